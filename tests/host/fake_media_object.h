// A media object that notes what it is told and talks nonsense where a test tells it to.
#pragma once

#include <cstring>
#include <functional>
#include <optional>
#include <vector>

#include "shell/media_object.h"
#include "tests/support/counted_fake.h"

namespace clarivex {

/// The real one, but for what the test sets.
class FakeMediaObject final : public CountedFake<CVXMediaObject> {
public:
    FakeMediaObject() : CountedFake(iidMediaObject) {}

    // What the test sets.
    std::function<HRESULT(BYTE* out)> process;  ///< in place of the object's own work
    std::function<void(DMO_MEDIA_TYPE& offered)> spoilOffer = [](auto&) {};
    bool withoutSettings = false;  ///< but it says that all is well
    std::optional<DWORD> inputBytes, outputBytes;

    // What the test looks at.
    int discontinuities = 0;
    VIDEOINFOHEADER2 inputHeader = {};
    std::vector<int64_t> starts, lengths;
    std::vector<DWORD> inputFlags;
    DWORD outputLengthBefore = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!IsEqualGUID(iid, iidCvxSettings)) return CountedFake::QueryInterface(iid, out);
        if (withoutSettings) return S_OK;
        AddRef();
        *out = static_cast<ICVXSettings*>(this);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) override {
        std::memcpy(&inputHeader, type->pbFormat, sizeof inputHeader);
        return CVXMediaObject::SetInputType(index, type, flags);
    }
    HRESULT STDMETHODCALLTYPE GetOutputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) override {
        const HRESULT result = CVXMediaObject::GetOutputType(index, typeIndex, type);
        spoilOffer(*type);
        return result;
    }
    HRESULT STDMETHODCALLTYPE GetInputSizeInfo(DWORD index, DWORD* size, DWORD* lookahead, DWORD* alignment) override {
        const HRESULT result = CVXMediaObject::GetInputSizeInfo(index, size, lookahead, alignment);
        *size = inputBytes.value_or(*size);
        return result;
    }
    HRESULT STDMETHODCALLTYPE GetOutputSizeInfo(DWORD index, DWORD* size, DWORD* alignment) override {
        const HRESULT result = CVXMediaObject::GetOutputSizeInfo(index, size, alignment);
        *size = outputBytes.value_or(*size);
        return result;
    }
    HRESULT STDMETHODCALLTYPE Discontinuity(DWORD index) override {
        ++discontinuities;
        return CVXMediaObject::Discontinuity(index);
    }
    HRESULT STDMETHODCALLTYPE ProcessInput(DWORD index, IMediaBuffer* buffer, DWORD flags, REFERENCE_TIME time,
                                           REFERENCE_TIME length) override {
        inputFlags.push_back(flags);
        starts.push_back(time);
        lengths.push_back(length);
        return CVXMediaObject::ProcessInput(index, buffer, flags, time, length);
    }
    HRESULT STDMETHODCALLTYPE ProcessOutput(DWORD index, DWORD count, DMO_OUTPUT_DATA_BUFFER* buffers,
                                            DWORD* status) override {
        BYTE* out = nullptr;
        buffers->pBuffer->GetBufferAndLength(&out, &outputLengthBefore);
        if (!process) return CVXMediaObject::ProcessOutput(index, count, buffers, status);
        Flush();
        return process(out);
    }
};

}  // namespace clarivex
