// A media object that notes the calls made to it and does what a test tells it to.
#pragma once

#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "host/picture.h"
#include "platform/com_pointer.h"
#include "tests/support/fake_settings.h"

namespace clarivex {

/// Methods that a player has no use for answer E_NOTIMPL.
class FakeMediaObject final : public CountedFake<IMediaObject> {
public:
    FakeMediaObject() : CountedFake(iidMediaObject) {}

    // What the test sets.
    std::function<PictureSize(PictureSize)> outputSizeOf = [](PictureSize size) { return size; };
    std::function<HRESULT()> offerResult = [] { return S_OK; };
    std::function<HRESULT(std::span<const BYTE> in, BYTE* out)> process = [](auto, BYTE*) { return S_OK; };
    std::function<void(DMO_MEDIA_TYPE& offered)> spoilOffer = [](auto&) {};
    bool withoutSettings = false;  // but it says that all is well
    DWORD inputBytes = 1 << 20;
    DWORD outputBytes = 1 << 20;

    // What the test looks at.
    std::vector<std::string> calls;
    VIDEOINFOHEADER2 inputHeader = {};
    GUID inputSubtype = {};
    std::vector<int64_t> starts, lengths;
    std::vector<DWORD> inputFlags;
    DWORD outputLengthBefore = 1;
    FakeSettings settings;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!IsEqualGUID(iid, iidCvxSettings)) return CountedFake::QueryInterface(iid, out);
        return withoutSettings ? S_OK : settings.QueryInterface(iid, out);
    }

    HRESULT STDMETHODCALLTYPE SetInputType(DWORD, const DMO_MEDIA_TYPE* type, DWORD) override {
        calls.push_back("SetInputType");
        inputSubtype = type->subtype;
        std::memcpy(&inputHeader, type->pbFormat, sizeof inputHeader);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetOutputType(DWORD, DWORD, DMO_MEDIA_TYPE* type) override {
        calls.push_back("GetOutputType");
        if (offerResult() != S_OK) return offerResult();
        VIDEOINFOHEADER2 header = inputHeader;
        const PictureSize size = outputSizeOf({header.bmiHeader.biWidth, header.bmiHeader.biHeight});
        header.bmiHeader.biWidth = size.width;
        header.bmiHeader.biHeight = size.height;
        DMO_MEDIA_TYPE offered = {};
        offered.majortype = mediaTypeVideo;
        offered.subtype = inputSubtype;
        offered.formattype = formatVideoInfo2;
        offered.cbFormat = sizeof header;
        offered.pbFormat = reinterpret_cast<BYTE*>(&header);
        MoCopyMediaType(type, &offered);
        spoilOffer(*type);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetOutputType(DWORD, const DMO_MEDIA_TYPE*, DWORD) override {
        calls.push_back("SetOutputType");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetInputSizeInfo(DWORD, DWORD* size, DWORD* lookahead, DWORD* alignment) override {
        *size = inputBytes;
        *lookahead = 0;
        *alignment = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetOutputSizeInfo(DWORD, DWORD* size, DWORD* alignment) override {
        *size = outputBytes;
        *alignment = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE AllocateStreamingResources() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE FreeStreamingResources() override { return Flush(); }
    HRESULT STDMETHODCALLTYPE Discontinuity(DWORD) override {
        calls.push_back("Discontinuity");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Flush() override {
        if (held) held->Release();
        held = nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ProcessInput(DWORD, IMediaBuffer* buffer, DWORD flags, REFERENCE_TIME time,
                                           REFERENCE_TIME length) override {
        calls.push_back("ProcessInput");
        buffer->AddRef();
        Flush();
        held = buffer;
        inputFlags.push_back(flags);
        starts.push_back(time);
        lengths.push_back(length);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ProcessOutput(DWORD, DWORD, DMO_OUTPUT_DATA_BUFFER* buffers, DWORD*) override {
        calls.push_back("ProcessOutput");
        BYTE *in = nullptr, *out = nullptr;
        DWORD inLength = 0;
        held->GetBufferAndLength(&in, &inLength);
        buffers->pBuffer->GetBufferAndLength(&out, &outputLengthBefore);
        const HRESULT result = process({in, inLength}, out);
        if (result == S_OK) Flush();
        return result;
    }

    HRESULT STDMETHODCALLTYPE GetStreamCount(DWORD*, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetInputStreamInfo(DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetOutputStreamInfo(DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetInputType(DWORD, DWORD, DMO_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetInputCurrentType(DWORD, DMO_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetOutputCurrentType(DWORD, DMO_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetInputMaxLatency(DWORD, REFERENCE_TIME*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetInputMaxLatency(DWORD, REFERENCE_TIME) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetInputStatus(DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Lock(LONG) override { return E_NOTIMPL; }

private:
    IMediaBuffer* held = nullptr;
};

}  // namespace clarivex
