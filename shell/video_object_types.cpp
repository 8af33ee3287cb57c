// The media object before its first frame: which types it takes and what it offers in return.
#include <memory>
#include <new>
#include <utility>

#include "pipeline/cpu_speed.h"
#include "platform/stream_flags.h"
#include "runtime/diagnostics.h"
#include "shell/media_object.h"

namespace clarivex {
namespace {

/// Answers what most methods ask of their arguments first.
HRESULT CheckStream(DWORD index, bool pointersGiven) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    return pointersGiven ? S_OK : E_POINTER;
}

HRESULT CheckTypeIndex(DWORD index, DWORD typeIndex) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    return typeIndex < offeredSubtypes.size() ? S_OK : DMO_E_NO_MORE_ITEMS;
}

/// The stream infos test their pointer before the index: kept so that hosts get the same answers between releases.
HRESULT GiveFlags(DWORD index, DWORD* target, DWORD flags) {
    if (target == nullptr) return E_POINTER;
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    *target = flags;
    return S_OK;
}

HRESULT CopyType(const DMO_MEDIA_TYPE& source, std::shared_ptr<const MediaType>& target) {
    try {
        const auto copy = std::make_shared<MediaType>();
        const HRESULT result = copy->Assign(source);
        if (SUCCEEDED(result)) target = copy;
        return result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

void TraceSize(const BITMAPINFOHEADER& bitmap) {
    Trace("       dim %d x %d", static_cast<int>(bitmap.biWidth), static_cast<int>(bitmap.biHeight));
}

}  // namespace

HRESULT CVXMediaObject::GetStreamCount(DWORD* inputs, DWORD* outputs) {
    if (inputs == nullptr || outputs == nullptr) return E_POINTER;
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
    if (const HRESULT checked = CheckTypeIndex(index, typeIndex); FAILED(checked) || type == nullptr) return checked;
    if (const StreamType current = CurrentType(StreamSide::input); current.type != nullptr) {
        if (const auto header = ReadVideoHeader(current.type->Get())) TraceSize(header->bitmap);
        return MoCopyMediaType(type, &current.type->Get());
    }
    *type = {};
    type->majortype = mediaTypeVideo;
    type->subtype = offeredSubtypes[typeIndex];
    return S_OK;
}

HRESULT CVXMediaObject::GetOutputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) {
    Trace("ZPLX : GetOutputType");
    if (const HRESULT checked = CheckTypeIndex(index, typeIndex); FAILED(checked) || type == nullptr) return checked;
    StreamTerms terms = CurrentTerms();
    const HRESULT result = OfferOutputType(terms.input, terms.negotiated, type);
    const CriticalSectionGuard guard(stateLock);
    if (input.type == terms.input.type)  // a type set meanwhile wants an offer of its own
        negotiated = terms.negotiated;
    return result;
}

/// Decides in `next` about a stream of the type `current`, and offers the output type that follows. Measuring the
/// processor may take a while, so no lock is held.
HRESULT CVXMediaObject::OfferOutputType(const StreamType& current, Negotiated& next, DMO_MEDIA_TYPE* type) const {
    next.plan.scalingOn = false;
    next.plan.sourceIsVih2WithoutBitrate = true;
    std::optional<VideoHeader> header = ReadVideoHeader(current.Get());
    if (!header) return DMO_E_TYPE_NOT_ACCEPTED;
    next.source = FormatOf(current.Get());
    TraceSize(header->bitmap);
    if (!DecideStream(*header, next.plan)) return DMO_E_TYPE_NOT_ACCEPTED;
    const HRESULT copied = MoCopyMediaType(type, &current.type->Get());
    if (SUCCEEDED(copied)) WriteVideoHeader(*type, *header);
    return copied;
}

bool CVXMediaObject::DecideStream(VideoHeader& header, StreamPlan& plan) const {
    const PlanSettings choice{.mode = settings.mode, .allowHd = settings.allowHd, .speedGHz = MeasureCpuSpeed};
    return PlanStream(choice, header, plan);
}

CVXMediaObject::StreamType CVXMediaObject::CurrentType(StreamSide side) const {
    const CriticalSectionGuard guard(stateLock);
    return side == StreamSide::input ? input : output;
}

CVXMediaObject::StreamTerms CVXMediaObject::CurrentTerms() const {
    const CriticalSectionGuard guard(stateLock);
    return {input, output, negotiated};
}

HRESULT CVXMediaObject::CheckType(const DMO_MEDIA_TYPE& type, StreamSide side, DWORD flags) const {
    const bool inputKnown = side == StreamSide::input || CurrentType(StreamSide::input).type != nullptr;
    if (inputKnown && IsAcceptedType(type, side)) return S_OK;
    return (flags & DMO_SET_TYPEF_TEST_ONLY) != 0 ? S_FALSE : DMO_E_TYPE_NOT_ACCEPTED;
}

/// A copy that fails leaves the stream without a type.
HRESULT CVXMediaObject::StoreType(const DMO_MEDIA_TYPE& type, StreamSide side) {
    std::shared_ptr<const MediaType> copy;
    const HRESULT result = CopyType(type, copy);
    const uint32_t imageBytes = copy != nullptr ? ImageBytes(copy->Get()) : 0;
    ReplaceType({std::move(copy), imageBytes}, side);
    return result;
}

/// The old type is let go of by the caller, outside the lock: it may hold an object of the host.
void CVXMediaObject::ReplaceType(StreamType type, StreamSide side) {
    const CriticalSectionGuard guard(stateLock);
    std::swap(side == StreamSide::input ? input : output, type);
}

HRESULT CVXMediaObject::ChangeType(DWORD index, const DMO_MEDIA_TYPE* type, StreamSide side, DWORD flags) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    if ((flags & DMO_SET_TYPEF_CLEAR) != 0) {
        ReplaceType({nullptr, CurrentType(side).imageBytes}, side);
        return S_OK;
    }
    if (type == nullptr) return E_POINTER;
    const HRESULT checked = CheckType(*type, side, flags);
    return flags != 0 || checked != S_OK ? checked : StoreType(*type, side);
}

HRESULT CVXMediaObject::SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) {
    {
        const CriticalSectionGuard guard(stateLock);
        newStream = true;
    }
    return ChangeType(index, type, StreamSide::input, flags);
}

HRESULT CVXMediaObject::SetOutputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) {
    return ChangeType(index, type, StreamSide::output, flags);
}

HRESULT CVXMediaObject::GetInputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) {
    return GiveCurrentType(index, StreamSide::input, type);
}

HRESULT CVXMediaObject::GetOutputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) {
    return GiveCurrentType(index, StreamSide::output, type);
}

HRESULT CVXMediaObject::GiveCurrentType(DWORD index, StreamSide side, DMO_MEDIA_TYPE* target) const {
    if (const HRESULT checked = CheckStream(index, target != nullptr); FAILED(checked)) return checked;
    const StreamType current = CurrentType(side);
    if (current.type == nullptr) return DMO_E_TYPE_NOT_SET;
    MoFreeMediaType(target);
    return MoCopyMediaType(target, &current.type->Get());
}

HRESULT CVXMediaObject::GetInputSizeInfo(DWORD index, DWORD* size, DWORD* lookahead, DWORD* alignment) {
    const bool given = size != nullptr && lookahead != nullptr && alignment != nullptr;
    if (const HRESULT checked = CheckStream(index, given); FAILED(checked)) return checked;
    const StreamType current = CurrentType(StreamSide::input);
    if (current.type == nullptr) return DMO_E_TYPE_NOT_SET;
    *size = current.imageBytes;
    *lookahead = 0;
    *alignment = 1;
    return S_OK;
}

HRESULT CVXMediaObject::GetOutputSizeInfo(DWORD index, DWORD* size, DWORD* alignment) {
    if (const HRESULT checked = CheckStream(index, size != nullptr && alignment != nullptr); FAILED(checked))
        return checked;
    const StreamType current = CurrentType(StreamSide::output);
    if (current.type == nullptr) return DMO_E_TYPE_NOT_SET;
    *size = current.imageBytes;
    *alignment = 1;
    return S_OK;
}

HRESULT CVXMediaObject::GetInputMaxLatency(DWORD, REFERENCE_TIME*) { return E_NOTIMPL; }

HRESULT CVXMediaObject::SetInputMaxLatency(DWORD, REFERENCE_TIME) { return E_NOTIMPL; }

}  // namespace clarivex
