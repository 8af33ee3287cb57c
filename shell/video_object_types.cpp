// The types of a media object's streams: asked for, set, cleared and told.
#include <memory>
#include <new>
#include <utility>

#include "platform/stream_flags.h"
#include "runtime/diagnostics.h"
#include "shell/video_object.h"

namespace clarivex {
namespace {

/// Answers what most methods ask of their arguments first.
HRESULT CheckStream(DWORD index, bool pointersGiven) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    return pointersGiven ? S_OK : E_POINTER;
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

}  // namespace

HRESULT CVXVideoObject::GetStreamCount(DWORD* inputs, DWORD* outputs) {
    if (inputs == nullptr || outputs == nullptr) return E_POINTER;
    *inputs = 1;
    *outputs = 1;
    return S_OK;
}

HRESULT CVXVideoObject::GetInputStreamInfo(DWORD index, DWORD* flags) {
    return GiveFlags(index, flags, streamWholeSamples | streamSingleSamplePerBuffer | streamHoldsBuffers);
}

HRESULT CVXVideoObject::GetOutputStreamInfo(DWORD index, DWORD* flags) {
    return GiveFlags(index, flags, streamWholeSamples | streamSingleSamplePerBuffer);
}

HRESULT CVXVideoObject::GetInputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    if (typeIndex >= kind.formats.size()) return DMO_E_NO_MORE_ITEMS;
    if (type == nullptr) return S_OK;
    if (const StreamType current = CurrentType(StreamSide::input); kind.repeatsInputType && current.type != nullptr) {
        TraceSize(current.type->Get());
        return MoCopyMediaType(type, &current.type->Get());
    }
    *type = {};
    type->majortype = mediaTypeVideo;
    type->subtype = kind.formats[typeIndex].subtype;
    return S_OK;
}

HRESULT CVXVideoObject::GetOutputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) {
    Trace("ZPLX : GetOutputType");
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    StreamTerms terms = CurrentTerms();
    const HRESULT result = OfferOutputType(typeIndex, terms, type);
    const CriticalSectionGuard guard(stateLock);
    if (kind.offerSettles && type != nullptr &&
        stream.input.type == terms.input.type)  // a type set meanwhile wants an offer of its own
        stream.negotiated = terms.negotiated;
    return result;
}

CVXVideoObject::StreamType CVXVideoObject::CurrentType(StreamSide side) const {
    const CriticalSectionGuard guard(stateLock);
    return side == StreamSide::input ? stream.input : stream.output;
}

CVXVideoObject::StreamTerms CVXVideoObject::CurrentTerms() const {
    const CriticalSectionGuard guard(stateLock);
    return stream;
}

HRESULT CVXVideoObject::CheckType(const DMO_MEDIA_TYPE& type, StreamSide side, DWORD flags) const {
    const StreamTerms terms = CurrentTerms();
    const bool inputKnown = side == StreamSide::input || terms.input.type != nullptr;
    if (inputKnown && Accepts(type, side, terms)) return S_OK;
    return (flags & DMO_SET_TYPEF_TEST_ONLY) != 0 ? S_FALSE : DMO_E_TYPE_NOT_ACCEPTED;
}

/// A copy that fails leaves the stream without a type.
HRESULT CVXVideoObject::StoreType(const DMO_MEDIA_TYPE& type, StreamSide side) {
    std::shared_ptr<const MediaType> copy;
    const HRESULT result = CopyType(type, copy);
    const uint32_t imageBytes = copy != nullptr ? BytesOf(copy->Get(), side) : 0;
    ReplaceType({std::move(copy), imageBytes}, side);
    return result;
}

/// Old types are let go of outside the lock: they may hold an object of the host.
void CVXVideoObject::ReplaceType(StreamType type, StreamSide side) {
    StreamTerms before;
    const CriticalSectionGuard guard(stateLock);
    before = stream;
    (side == StreamSide::input ? stream.input : stream.output) = std::move(type);
    Settle(stream);
}

HRESULT CVXVideoObject::ChangeType(DWORD index, const DMO_MEDIA_TYPE* type, StreamSide side, DWORD flags) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    if ((flags & DMO_SET_TYPEF_CLEAR) != 0) {
        ReplaceType({nullptr, CurrentType(side).imageBytes}, side);
        return S_OK;
    }
    if (type == nullptr) return E_POINTER;
    const HRESULT checked = CheckType(*type, side, flags);
    return flags != 0 || checked != S_OK ? checked : StoreType(*type, side);
}

HRESULT CVXVideoObject::SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) {
    return ChangeType(index, type, StreamSide::input, flags);
}

HRESULT CVXVideoObject::SetOutputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) {
    return ChangeType(index, type, StreamSide::output, flags);
}

HRESULT CVXVideoObject::GetInputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) {
    return GiveCurrentType(index, StreamSide::input, type);
}

HRESULT CVXVideoObject::GetOutputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) {
    return GiveCurrentType(index, StreamSide::output, type);
}

HRESULT CVXVideoObject::GiveCurrentType(DWORD index, StreamSide side, DMO_MEDIA_TYPE* target) const {
    if (const HRESULT checked = CheckStream(index, target != nullptr); FAILED(checked)) return checked;
    const StreamType current = CurrentType(side);
    if (current.type == nullptr) return DMO_E_TYPE_NOT_SET;
    MoFreeMediaType(target);
    return MoCopyMediaType(target, &current.type->Get());
}

HRESULT CVXVideoObject::GetInputSizeInfo(DWORD index, DWORD* size, DWORD* lookahead, DWORD* alignment) {
    const bool given = size != nullptr && lookahead != nullptr && alignment != nullptr;
    if (const HRESULT checked = CheckStream(index, given); FAILED(checked)) return checked;
    const StreamType current = CurrentType(StreamSide::input);
    if (current.type == nullptr) return DMO_E_TYPE_NOT_SET;
    *size = current.imageBytes;
    *lookahead = 0;
    *alignment = 1;
    return S_OK;
}

HRESULT CVXVideoObject::GetOutputSizeInfo(DWORD index, DWORD* size, DWORD* alignment) {
    if (const HRESULT checked = CheckStream(index, size != nullptr && alignment != nullptr); FAILED(checked))
        return checked;
    const StreamType current = CurrentType(StreamSide::output);
    if (current.type == nullptr) return DMO_E_TYPE_NOT_SET;
    *size = current.imageBytes;
    *alignment = 1;
    return S_OK;
}

HRESULT CVXVideoObject::GetInputMaxLatency(DWORD, REFERENCE_TIME*) { return E_NOTIMPL; }

HRESULT CVXVideoObject::SetInputMaxLatency(DWORD, REFERENCE_TIME) { return E_NOTIMPL; }

}  // namespace clarivex
