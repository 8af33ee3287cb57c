// The media object before its first frame: which types it takes and what it offers in return.
#include "platform/stream_flags.h"
#include "runtime/diagnostics.h"
#include "shell/cpu_speed.h"
#include "shell/media_object.h"

namespace clarivex {
namespace {

// Answers what most methods ask of their arguments first.
HRESULT CheckStream(DWORD index, bool pointersGiven) {
    if (index != 0) {
        return DMO_E_INVALIDSTREAMINDEX;
    }
    return pointersGiven ? S_OK : E_POINTER;
}

HRESULT CheckTypeIndex(DWORD index, DWORD typeIndex) {
    if (index != 0) {
        return DMO_E_INVALIDSTREAMINDEX;
    }
    return typeIndex < offeredSubtypes.size() ? S_OK : DMO_E_NO_MORE_ITEMS;
}

// The stream infos test their pointer before the index.
HRESULT GiveFlags(DWORD index, DWORD* target, DWORD flags) {
    if (target == nullptr) {
        return E_POINTER;
    }
    if (index != 0) {
        return DMO_E_INVALIDSTREAMINDEX;
    }
    *target = flags;
    return S_OK;
}

HRESULT GiveCurrentType(DWORD index, const MediaType& stored, DMO_MEDIA_TYPE* target) {
    if (const HRESULT checked = CheckStream(index, target != nullptr); FAILED(checked)) {
        return checked;
    }
    if (!stored.IsSet()) {
        return DMO_E_TYPE_NOT_SET;
    }
    MoFreeMediaType(target);
    return MoCopyMediaType(target, &stored.Get());
}

void TraceSize(const BITMAPINFOHEADER& bitmap) {
    Trace("       dim %d x %d", static_cast<int>(bitmap.biWidth), static_cast<int>(bitmap.biHeight));
}

}  // namespace

HRESULT CVXMediaObject::GetStreamCount(DWORD* inputs, DWORD* outputs) {
    if (inputs == nullptr || outputs == nullptr) {
        return E_POINTER;
    }
    *inputs = 1;
    *outputs = 1;
    return S_OK;
}

HRESULT CVXMediaObject::GetInputStreamInfo(DWORD index, DWORD* flags) {
    return GiveFlags(index, flags, streamWholeSamples | streamSingleSamplePerBuffer | streamHoldsBuffers);
}

HRESULT CVXMediaObject::GetOutputStreamInfo(DWORD index, DWORD* flags) {
    return GiveFlags(index, flags, streamWholeSamples | streamSingleSamplePerBuffer);
}

HRESULT CVXMediaObject::GetInputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) {
    if (const HRESULT checked = CheckTypeIndex(index, typeIndex); FAILED(checked) || type == nullptr) {
        return checked;
    }
    if (const auto header = ReadVideoHeader(input.type.Get())) {
        TraceSize(header->bitmap);
        return MoCopyMediaType(type, &input.type.Get());
    }
    *type = {};
    type->majortype = mediaTypeVideo;
    type->subtype = offeredSubtypes[typeIndex];
    return S_OK;
}

HRESULT CVXMediaObject::GetOutputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) {
    Trace("ZPLX : GetOutputType");
    if (const HRESULT checked = CheckTypeIndex(index, typeIndex); FAILED(checked) || type == nullptr) {
        return checked;
    }
    const HRESULT result = OfferOutputType(type);
    scalingActive = plan.scalingOn;
    return result;
}

HRESULT CVXMediaObject::OfferOutputType(DMO_MEDIA_TYPE* type) {
    plan.scalingOn = false;
    plan.sourceIsVih2WithoutBitrate = true;
    std::optional<VideoHeader> header = ReadVideoHeader(input.type.Get());
    if (!header) {
        return DMO_E_TYPE_NOT_ACCEPTED;
    }
    if (const HRESULT kept = sourceType.Assign(input.type.Get()); FAILED(kept)) {
        return kept;
    }
    TraceSize(header->bitmap);
    if (!DecideStream(*header)) {
        return DMO_E_TYPE_NOT_ACCEPTED;
    }
    const HRESULT copied = MoCopyMediaType(type, &input.type.Get());
    if (SUCCEEDED(copied)) {
        WriteVideoHeader(*type, *header);
    }
    return copied;
}

bool CVXMediaObject::DecideStream(VideoHeader& header) {
    const PlanSettings choice{.mode = settings.mode, .allowHd = settings.allowHd, .speedGHz = MeasureCpuSpeed};
    return PlanStream(choice, header, plan);
}

HRESULT CVXMediaObject::CheckType(const DMO_MEDIA_TYPE& type, StreamSide side, DWORD flags) const {
    const bool inputKnown = side == StreamSide::input || input.type.IsSet();
    if (inputKnown && IsAcceptedType(type, side)) {
        return S_OK;
    }
    return (flags & DMO_SET_TYPEF_TEST_ONLY) != 0 ? S_FALSE : DMO_E_TYPE_NOT_ACCEPTED;
}

HRESULT CVXMediaObject::StoreType(const DMO_MEDIA_TYPE& type, StreamType& stream) {
    const HRESULT result = stream.type.Assign(type);
    stream.imageBytes = ImageBytes(stream.type.Get());
    return result;
}

HRESULT CVXMediaObject::ChangeType(DWORD index, const DMO_MEDIA_TYPE* type, StreamSide side, DWORD flags) {
    StreamType& stream = side == StreamSide::input ? input : output;
    if (index != 0) {
        return DMO_E_INVALIDSTREAMINDEX;
    }
    if ((flags & DMO_SET_TYPEF_CLEAR) != 0) {
        stream.type.Clear();
        return S_OK;
    }
    if (type == nullptr) {
        return E_POINTER;
    }
    const HRESULT checked = CheckType(*type, side, flags);
    return flags != 0 || checked != S_OK ? checked : StoreType(*type, stream);
}

HRESULT CVXMediaObject::SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) {
    newStream = true;
    return ChangeType(index, type, StreamSide::input, flags);
}

HRESULT CVXMediaObject::SetOutputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) {
    return ChangeType(index, type, StreamSide::output, flags);
}

HRESULT CVXMediaObject::GetInputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) {
    return GiveCurrentType(index, input.type, type);
}

HRESULT CVXMediaObject::GetOutputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) {
    return GiveCurrentType(index, output.type, type);
}

HRESULT CVXMediaObject::GetInputSizeInfo(DWORD index, DWORD* size, DWORD* lookahead, DWORD* alignment) {
    const bool given = size != nullptr && lookahead != nullptr && alignment != nullptr;
    if (const HRESULT checked = CheckStream(index, given); FAILED(checked)) {
        return checked;
    }
    if (!input.type.IsSet()) {
        return DMO_E_TYPE_NOT_SET;
    }
    *size = input.imageBytes;
    *lookahead = 0;
    *alignment = 1;
    return S_OK;
}

HRESULT CVXMediaObject::GetOutputSizeInfo(DWORD index, DWORD* size, DWORD* alignment) {
    if (const HRESULT checked = CheckStream(index, size != nullptr && alignment != nullptr); FAILED(checked)) {
        return checked;
    }
    if (!output.type.IsSet()) {
        return DMO_E_TYPE_NOT_SET;
    }
    *size = output.imageBytes;
    *alignment = 1;
    return S_OK;
}

HRESULT CVXMediaObject::GetInputMaxLatency(DWORD, REFERENCE_TIME*) { return E_NOTIMPL; }

HRESULT CVXMediaObject::SetInputMaxLatency(DWORD, REFERENCE_TIME) { return E_NOTIMPL; }

}  // namespace clarivex
