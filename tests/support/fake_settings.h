// The settings of a running media object that count what is done to them.
#pragma once

#include <string>
#include <vector>

#include "shell/settings.h"
#include "tests/support/counted_fake.h"

namespace clarivex {

/// Stands in the test; it is not a media object otherwise.
class FakeSettings final : public CountedFake<ICVXSettings> {
public:
    FakeSettings() : CountedFake(iidCvxSettings) {}

    // What is found and what is left behind.
    double scaleFactor = 0.25;
    float sharpness = 1.0F;
    unsigned mode = 1;
    int allowHd = 0;
    int enableLighting = 1;
    int scalingActive = 0;

    std::vector<std::string> puts;  ///< names of the properties put, in order

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

}  // namespace clarivex
