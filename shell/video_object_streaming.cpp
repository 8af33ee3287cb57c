// The media object while frames run through it: one buffer is kept, and made into a picture when output is asked for.
#include <utility>

#include "shell/video_object.h"

namespace clarivex {
namespace {

constexpr DWORD allTimesValid = DMO_OUTPUT_DATA_BUFFERF_TIME | DMO_OUTPUT_DATA_BUFFERF_TIMELENGTH;

/// What GetBufferAndLength gives.
struct BufferContent {
    BYTE* data = nullptr;
    DWORD length = 0;
};

HRESULT GetContent(IMediaBuffer& buffer, BufferContent& content) {
    return buffer.GetBufferAndLength(&content.data, &content.length);
}

/// How many bytes of a buffer may be touched; `otherwise` where it does not say.
size_t CapacityOf(IMediaBuffer& buffer, DWORD otherwise) {
    DWORD capacity = 0;
    return buffer.GetMaxLength(&capacity) == S_OK ? capacity : otherwise;
}

}  // namespace

HRESULT CVXVideoObject::Flush() {
    HeldInput flushed;  // let go of after the lock
    const CriticalSectionGuard guard(stateLock);
    std::swap(held, flushed);
    frameHoldsInput = false;
    return S_OK;
}

HRESULT CVXVideoObject::FreeStreamingResources() { return Flush(); }

HRESULT CVXVideoObject::AllocateStreamingResources() { return S_OK; }

HRESULT CVXVideoObject::Discontinuity(DWORD) { return S_OK; }

HRESULT CVXVideoObject::GetInputStatus(DWORD index, DWORD* flags) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    if (flags == nullptr) return E_POINTER;
    constexpr DWORD busy = 0;
    constexpr DWORD acceptsData = DMO_INPUT_STATUSF_ACCEPT_DATA;
    const CriticalSectionGuard guard(stateLock);
    *flags = HoldsInput() ? busy : acceptsData;
    return S_OK;
}

HRESULT CVXVideoObject::ProcessInput(DWORD index, IMediaBuffer* buffer, DWORD flags, REFERENCE_TIME time,
                                     REFERENCE_TIME length) {
    if (index != 0) return DMO_E_INVALIDSTREAMINDEX;
    if (buffer == nullptr) return E_POINTER;
    if (const HRESULT accepts = AcceptsInput(); FAILED(accepts)) return accepts;
    BufferContent content;
    const HRESULT works = GetContent(*buffer, content);
    if (FAILED(works)) return works;
    ComPointer<IMediaBuffer> reference = ReferenceTo(buffer);
    const CriticalSectionGuard guard(stateLock);
    if (HoldsInput()) return DMO_E_NOTACCEPTING;  // another call was here first
    held.buffer = std::move(reference);
    held.times.Note(flags, time, length);
    return works;
}

HRESULT CVXVideoObject::AcceptsInput() const {
    const CriticalSectionGuard guard(stateLock);
    if (stream.input.type == nullptr) return DMO_E_TYPE_NOT_SET;
    return HoldsInput() ? DMO_E_NOTACCEPTING : S_OK;
}

void CVXVideoObject::BufferTimes::Note(DWORD noted, REFERENCE_TIME time, REFERENCE_TIME length) {
    flags = noted;
    timestamp = time;
    timelength = length;
}

void CVXVideoObject::BufferTimes::PassOn(DMO_OUTPUT_DATA_BUFFER& target) const {
    target.dwStatus = flags & (DMO_OUTPUT_DATA_BUFFERF_SYNCPOINT | allTimesValid);
    if ((flags & DMO_INPUT_DATA_BUFFERF_TIME) != 0) target.rtTimestamp = timestamp;
    if ((flags & DMO_INPUT_DATA_BUFFERF_TIMELENGTH) != 0) target.rtTimelength = timelength;
}

HRESULT CVXVideoObject::ProcessOutput(DWORD, DWORD count, DMO_OUTPUT_DATA_BUFFER* buffers, DWORD* status) {
    if (buffers == nullptr) return E_POINTER;
    if (count != 1) return E_INVALIDARG;
    TakenFrame frame;
    const HRESULT begun = BeginFrame(buffers->pBuffer != nullptr, frame);
    if (FAILED(begun)) return begun;
    if (status != nullptr) *status = 0;
    if (begun == S_FALSE) return GiveNothing(*buffers, frame.inputHeld);
    const HRESULT result = EnhanceInto(*buffers, frame);
    EndFrame(frame.input, result);
    return FAILED(result) ? result : S_OK;
}

/// Takes the held input for a frame: S_FALSE when there is none, or nothing to make it into.
HRESULT CVXVideoObject::BeginFrame(bool outputGiven, TakenFrame& frame) {
    const CriticalSectionGuard guard(stateLock);
    if (stream.output.type == nullptr) return DMO_E_TYPE_NOT_SET;
    if (frameRuns) return E_UNEXPECTED;
    frame.inputHeld = held.buffer != nullptr;
    if (!frame.inputHeld || !outputGiven) return S_FALSE;
    frame.input = std::exchange(held, {});
    frame.terms = stream;
    frameRuns = frameHoldsInput = true;
    return S_OK;
}

/// A failed frame gives its input back, unless that was flushed meanwhile. The input is let go of by the caller, outside
/// the lock.
void CVXVideoObject::EndFrame(HeldInput& used, HRESULT result) {
    const CriticalSectionGuard guard(stateLock);
    if (FAILED(result) && frameHoldsInput) held = std::move(used);
    frameRuns = frameHoldsInput = false;
}

HRESULT CVXVideoObject::GiveNothing(DMO_OUTPUT_DATA_BUFFER& target, bool inputHeld) {
    if (!inputHeld && target.pBuffer != nullptr) target.pBuffer->SetLength(0);
    target.dwStatus = 0;
    return S_FALSE;
}

HRESULT CVXVideoObject::EnhanceInto(DMO_OUTPUT_DATA_BUFFER& target, const TakenFrame& frame) {
    const StreamTerms& terms = frame.terms;
    target.pBuffer->SetLength((kind.toldLength == StreamSide::input ? terms.input : terms.output).imageBytes);
    frame.input.times.PassOn(target);
    if (kind.tellsAllTimes) target.dwStatus = allTimesValid;
    BufferContent to;
    BufferContent from;
    if (const HRESULT got = GetContent(*target.pBuffer, to); FAILED(got)) return got;
    if (const HRESULT got = GetContent(*frame.input.buffer, from); FAILED(got)) return got;
    // An output that does not tell its capacity has at least the bytes that GetOutputSizeInfo asked for; its length was
    // set just now and says nothing. An input has at least what it says it holds.
    return RunFrame(terms, {to.data, CapacityOf(*target.pBuffer, terms.output.imageBytes)},
                    {from.data, CapacityOf(*frame.input.buffer, from.length)});
}

HRESULT CVXVideoObject::RunFrame(const StreamTerms& terms, OutputBuffer to, InputBuffer from) {
    try {
        return MakeFrame(terms, to, from);
    } catch (...) {
        return E_OUTOFMEMORY;  // the frame path throws only what it says of memory
    }
}

}  // namespace clarivex
