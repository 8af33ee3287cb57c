// The media object while frames run through it: one buffer is kept, and made into a picture when output is asked for.
#include <cmath>
#include <utility>

#include "shell/media_object.h"

namespace clarivex {
namespace {

constexpr DWORD allTimesValid = DMO_OUTPUT_DATA_BUFFERF_TIME | DMO_OUTPUT_DATA_BUFFERF_TIMELENGTH;

// What GetBufferAndLength gives.
struct BufferContent {
    BYTE* data = nullptr;
    DWORD length = 0;
};

HRESULT GetContent(IMediaBuffer& buffer, BufferContent& content) {
    return buffer.GetBufferAndLength(&content.data, &content.length);
}

// How many bytes of a buffer may be touched; `otherwise` where it does not say.
size_t CapacityOf(IMediaBuffer& buffer, DWORD otherwise) {
    DWORD capacity = 0;
    return buffer.GetMaxLength(&capacity) == S_OK ? capacity : otherwise;
}

// The settings take any number; the picture takes those that mean a strength.
float UsableSharpness(float value) { return std::isfinite(value) && value > 0.0F ? value : 0.0F; }

}  // namespace

HRESULT CVXMediaObject::Flush() {
    heldInput.reset();
    times = {};
    return S_OK;
}

HRESULT CVXMediaObject::FreeStreamingResources() { return Flush(); }

HRESULT CVXMediaObject::AllocateStreamingResources() { return S_OK; }

HRESULT CVXMediaObject::Discontinuity(DWORD) { return S_OK; }

HRESULT CVXMediaObject::GetInputStatus(DWORD index, DWORD* flags) {
    if (index != 0) {
        return DMO_E_INVALIDSTREAMINDEX;
    }
    if (flags == nullptr) {
        return E_POINTER;
    }
    constexpr DWORD busy = 0;
    constexpr DWORD acceptsData = DMO_INPUT_STATUSF_ACCEPT_DATA;
    *flags = heldInput == nullptr ? acceptsData : busy;
    return S_OK;
}

HRESULT CVXMediaObject::ProcessInput(DWORD index, IMediaBuffer* buffer, DWORD flags, REFERENCE_TIME time,
                                     REFERENCE_TIME length) {
    if (index != 0) {
        return DMO_E_INVALIDSTREAMINDEX;
    }
    if (buffer == nullptr) {
        return E_POINTER;
    }
    if (!input.type.IsSet()) {
        return DMO_E_TYPE_NOT_SET;
    }
    if (heldInput != nullptr) {
        return DMO_E_NOTACCEPTING;
    }
    BufferContent content;
    const HRESULT works = GetContent(*buffer, content);
    if (FAILED(works)) {
        return works;
    }
    buffer->AddRef();
    heldInput.reset(buffer);
    times.Note(flags, time, length);
    return works;
}

void CVXMediaObject::BufferTimes::Note(DWORD flags, REFERENCE_TIME time, REFERENCE_TIME length) {
    hasTime = (flags & DMO_INPUT_DATA_BUFFERF_TIME) != 0;
    hasLength = (flags & DMO_INPUT_DATA_BUFFERF_TIMELENGTH) != 0;
    timestamp = hasTime ? time : timestamp;
    timelength = hasLength ? length : timelength;
}

void CVXMediaObject::BufferTimes::PassOn(DMO_OUTPUT_DATA_BUFFER& target) const {
    target.dwStatus = allTimesValid;
    if (hasTime) {
        target.rtTimestamp = timestamp;
    }
    if (hasLength) {
        target.rtTimelength = timelength;
    }
}

HRESULT CVXMediaObject::ProcessOutput(DWORD, DWORD count, DMO_OUTPUT_DATA_BUFFER* buffers, DWORD* status) {
    if (buffers == nullptr) {
        return E_POINTER;
    }
    if (count != 1) {
        return E_INVALIDARG;
    }
    if (!output.type.IsSet()) {
        return DMO_E_TYPE_NOT_SET;
    }
    if (status != nullptr) {
        *status = 0;
    }
    if (heldInput == nullptr || buffers->pBuffer == nullptr) {
        return GiveNothing(*buffers);
    }
    // The size of the input type, for larger pictures too: the renderer goes by the negotiated type.
    buffers->pBuffer->SetLength(input.imageBytes);
    times.PassOn(*buffers);
    const HRESULT result = EnhanceInto(*buffers->pBuffer);
    if (FAILED(result)) {
        return result;
    }
    return Flush();
}

HRESULT CVXMediaObject::GiveNothing(DMO_OUTPUT_DATA_BUFFER& target) const {
    if (heldInput == nullptr && target.pBuffer != nullptr) {
        target.pBuffer->SetLength(0);
    }
    target.dwStatus = 0;
    return S_FALSE;
}

HRESULT CVXMediaObject::EnhanceInto(IMediaBuffer& target) {
    BufferContent to;
    BufferContent from;
    if (const HRESULT got = GetContent(target, to); FAILED(got)) {
        return got;
    }
    if (const HRESULT got = GetContent(*heldInput, from); FAILED(got)) {
        return got;
    }
    // An output that does not tell its capacity has at least the bytes that GetOutputSizeInfo asked for; its length was
    // set just now and says nothing. An input has at least what it says it holds.
    return RunFrame({to.data, CapacityOf(target, output.imageBytes)}, {from.data, CapacityOf(*heldInput, from.length)});
}

HRESULT CVXMediaObject::RunFrame(OutputBuffer to, InputBuffer from) {
    try {
        const FrameRequest request = NextRequest();
        const FrameResult result = pipeline.RunFrame(request, to, from);
        if (request.settingsDirty && !result.settingsApplied) {
            settings.KeepSharpnessChange();
        }
        return result.code;
    } catch (...) {
        return E_OUTOFMEMORY;  // the frame path throws only what it says of memory
    }
}

FrameRequest CVXMediaObject::NextRequest() {
    FrameRequest request;
    request.format = PixelFormatOf(input.type.Get());
    request.input = FormatOf(input.type.Get());
    request.output = FormatOf(output.type.Get());
    request.source = FormatOf(sourceType.Get());
    request.sourceWidth = plan.sourceWidth;
    request.sourceHeight = plan.sourceHeight;
    request.scalingOn = plan.scalingOn;
    request.sourceIsVih2WithoutBitrate = plan.sourceIsVih2WithoutBitrate;
    request.pixelAspect = plan.pixelAspect;
    request.newStream = std::exchange(newStream, false);
    request.settingsDirty = settings.TakeSharpnessChange();
    request.enabled = settings.enabled != 0;
    request.enableLighting = settings.enableLighting;
    request.sharpness = UsableSharpness(settings.Sharpness());
    return request;
}

}  // namespace clarivex
