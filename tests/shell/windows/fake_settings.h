// A running media object and a page site that count what a property page does to them.
#pragma once

#include <string>
#include <vector>

#include "platform/guids.h"
#include "platform/win32.h"
#include "shell/settings.h"

namespace clarivex {

/// The settings of a media object, standing in the test; it is not a media object otherwise.
class FakeSettings final : public ICVXSettings {
public:
    // What the page finds and what it leaves behind.
    double scaleFactor = 0.25;
    float sharpness = 1.0F;
    unsigned mode = 1;
    int allowHd = 0;
    int enableLighting = 1;
    int scalingActive = 0;

    // What the test looks at.
    int references = 1;
    std::vector<std::string> puts;  ///< names of the properties put, in order

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        const bool known = IsEqualGUID(iid, iidUnknown) || IsEqualGUID(iid, iidCvxSettings);
        *out = known ? static_cast<ICVXSettings*>(this) : nullptr;
        references += known ? 1 : 0;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }

    HRESULT STDMETHODCALLTYPE get_ScaleFactor(double* value) override { return Get(value, scaleFactor); }
    HRESULT STDMETHODCALLTYPE put_ScaleFactor(double value) override { return Put("ScaleFactor", scaleFactor, value); }
    HRESULT STDMETHODCALLTYPE get_Sharpness(float* value) override { return Get(value, sharpness); }
    HRESULT STDMETHODCALLTYPE put_Sharpness(float value) override { return Put("Sharpness", sharpness, value); }
    HRESULT STDMETHODCALLTYPE get_CVXMode(unsigned* value) override { return Get(value, mode); }
    HRESULT STDMETHODCALLTYPE put_CVXMode(unsigned value) override { return Put("CVXMode", mode, value); }
    HRESULT STDMETHODCALLTYPE get_AllowHD(int* value) override { return Get(value, allowHd); }
    HRESULT STDMETHODCALLTYPE put_AllowHD(int value) override { return Put("AllowHD", allowHd, value); }
    HRESULT STDMETHODCALLTYPE get_EnableLighting(int* value) override { return Get(value, enableLighting); }
    HRESULT STDMETHODCALLTYPE put_EnableLighting(int value) override {
        return Put("EnableLighting", enableLighting, value);
    }
    HRESULT STDMETHODCALLTYPE get_ScalingActive(int* value) override { return Get(value, scalingActive); }

private:
    template <class Value>
    static HRESULT Get(Value* target, Value value) {
        *target = value;
        return S_OK;
    }
    template <class Value>
    HRESULT Put(const char* name, Value& field, Value value) {
        puts.emplace_back(name);
        field = value;
        return S_OK;
    }
};

/// Where a page tells that it changed.
class FakeSite final : public IPropertyPageSite {
public:
    int references = 1;
    std::vector<DWORD> changes;  ///< flags of each OnStatusChange

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
    HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD flags) override {
        changes.push_back(flags);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetLocaleID(LCID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*) override { return E_NOTIMPL; }
};

}  // namespace clarivex
