// CVXVideoObject: what all media objects of this system have in common, with one input and one output stream.
#pragma once

#include <cstdint>
#include <memory>

#include "pipeline/frame_request.h"
#include "platform/com_pointer.h"
#include "platform/win32.h"
#include "shell/critical_section.h"
#include "shell/media_type.h"
#include "shell/object_kind.h"
#include "shell/plugin_settings.h"
#include "shell/settings.h"
#include "shell/stream_plan.h"

namespace clarivex {

/// Holds a stream's types, keeps at most one input buffer, and makes each frame inside ProcessOutput on the caller's thread.
/// A class for hosts derives from it: it says as an ObjectKind what it has different from others, what it takes and
/// offers, and how a frame is made, and adds the interfaces that its hosts ask for.
///
/// The host serialises streaming calls; the settings, the switch and Lock may be used from other threads meanwhile. A
/// host that streams from several threads all the same, or calls the object from inside a buffer's methods, gets an
/// error or a late effect: a frame goes on with the buffer and the types that it has begun with.
/// Comes in the two shapes of com_object.h. No exception leaves a method.
///
/// Stream indices other than 0 give DMO_E_INVALIDSTREAMINDEX and null pointers E_POINTER, in the order in which the
/// arguments stand, where a method does not say otherwise.
class CVXVideoObject : public IMediaObject, public ISpecifyPropertyPages, public ICVXSettings {
public:
    CVXVideoObject(const CVXVideoObject&) = delete;
    CVXVideoObject& operator=(const CVXVideoObject&) = delete;

    // IMediaObject: types.
    HRESULT STDMETHODCALLTYPE GetStreamCount(DWORD* inputs, DWORD* outputs) override;
    HRESULT STDMETHODCALLTYPE GetInputStreamInfo(DWORD index, DWORD* flags) override;
    HRESULT STDMETHODCALLTYPE GetOutputStreamInfo(DWORD index, DWORD* flags) override;

    /// The offered subtypes; for kinds that repeat it the input type itself once it is set, whatever the index below their
    /// number. A null type asks only whether the index exists.
    HRESULT STDMETHODCALLTYPE GetInputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) override;

    /// What OfferOutputType gives. A null type decides nothing.
    HRESULT STDMETHODCALLTYPE GetOutputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) override;

    /// The clear flag looks at no type. Any other flag tests only; a refusal is S_FALSE with the test flag and
    /// DMO_E_TYPE_NOT_ACCEPTED otherwise.
    HRESULT STDMETHODCALLTYPE SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) override;

    /// As SetInputType, but refuses every type while no input type is set.
    HRESULT STDMETHODCALLTYPE SetOutputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) override;

    HRESULT STDMETHODCALLTYPE GetInputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) override;
    HRESULT STDMETHODCALLTYPE GetOutputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) override;
    HRESULT STDMETHODCALLTYPE GetInputSizeInfo(DWORD index, DWORD* size, DWORD* lookahead, DWORD* alignment) override;
    HRESULT STDMETHODCALLTYPE GetOutputSizeInfo(DWORD index, DWORD* size, DWORD* alignment) override;
    HRESULT STDMETHODCALLTYPE GetInputMaxLatency(DWORD index, REFERENCE_TIME* latency) override;
    HRESULT STDMETHODCALLTYPE SetInputMaxLatency(DWORD index, REFERENCE_TIME latency) override;

    // IMediaObject: streaming.
    HRESULT STDMETHODCALLTYPE Flush() override;
    HRESULT STDMETHODCALLTYPE Discontinuity(DWORD index) override;
    HRESULT STDMETHODCALLTYPE AllocateStreamingResources() override;
    HRESULT STDMETHODCALLTYPE FreeStreamingResources() override;
    HRESULT STDMETHODCALLTYPE GetInputStatus(DWORD index, DWORD* flags) override;
    HRESULT STDMETHODCALLTYPE ProcessInput(DWORD index, IMediaBuffer* buffer, DWORD flags, REFERENCE_TIME time,
                                           REFERENCE_TIME length) override;

    /// Without an input or an output buffer S_FALSE. A failure keeps the input; E_INVALIDARG is also what a buffer gets
    /// that cannot hold the picture of its type, and E_UNEXPECTED what a second call gets while one is at work.
    HRESULT STDMETHODCALLTYPE ProcessOutput(DWORD flags, DWORD count, DMO_OUTPUT_DATA_BUFFER* buffers,
                                            DWORD* status) override;

    /// Non-zero enters, zero leaves. Nothing in the object takes this lock by itself.
    HRESULT STDMETHODCALLTYPE Lock(LONG lock) override;

    virtual ~CVXVideoObject();

    /// The last step of making an object: the user's stored settings. Gives S_OK.
    HRESULT Complete();

    // ISpecifyPropertyPages.
    HRESULT STDMETHODCALLTYPE GetPages(CAUUID* pages) override;

    // ICVXSettings.
    HRESULT STDMETHODCALLTYPE get_ScaleFactor(double* value) override;
    HRESULT STDMETHODCALLTYPE put_ScaleFactor(double value) override;
    HRESULT STDMETHODCALLTYPE get_Sharpness(float* value) override;
    HRESULT STDMETHODCALLTYPE put_Sharpness(float value) override;
    HRESULT STDMETHODCALLTYPE get_CVXMode(unsigned* value) override;
    HRESULT STDMETHODCALLTYPE put_CVXMode(unsigned value) override;
    HRESULT STDMETHODCALLTYPE get_AllowHD(int* value) override;
    HRESULT STDMETHODCALLTYPE put_AllowHD(int value) override;
    HRESULT STDMETHODCALLTYPE get_EnableLighting(int* value) override;
    HRESULT STDMETHODCALLTYPE put_EnableLighting(int value) override;
    HRESULT STDMETHODCALLTYPE get_ScalingActive(int* value) override;

protected:
    /// One stream's type; none while the pointer is null. A type that is stored is never changed, so that whoever holds it
    /// can read it after another has taken its place.
    struct StreamType {
        std::shared_ptr<const MediaType> type;
        uint32_t imageBytes = 0;  // of the last type stored

        /// The type, all zero when there is none.
        DMO_MEDIA_TYPE Get() const { return type != nullptr ? type->Get() : DMO_MEDIA_TYPE{}; }
    };

    /// What was settled of a stream before its first frame, and the input type that it was settled for.
    struct Negotiated {
        StreamPlan plan;
        ImageFormat source;
    };

    /// All that is settled of a stream.
    struct StreamTerms {
        StreamType input;
        StreamType output;
        Negotiated negotiated;
    };

    /// kind  has to outlive the object
    explicit CVXVideoObject(const ObjectKind& kind) : kind(kind) {}

    /// Whether a type can be that of a stream. An output type is asked about only while the terms have an input type.
    virtual bool Accepts(const DMO_MEDIA_TYPE& type, StreamSide side, const StreamTerms& terms) const = 0;

    /// Bytes of a buffer for an accepted type.
    virtual uint32_t BytesOf(const DMO_MEDIA_TYPE& type, StreamSide side) const = 0;

    /// Answers GetOutputType from the type index on. `type` may be null, then nothing is decided. What the offer settles is
    /// left in `terms`, from which it was made. Called without a lock: it may take a while.
    virtual HRESULT OfferOutputType(DWORD typeIndex, StreamTerms& terms, DMO_MEDIA_TYPE* type) const = 0;

    /// Settles what follows from the types after one was set or cleared; may take a type away. Called under the object's lock, so
    /// nothing of a host's may be called.
    virtual void Settle(StreamTerms& /*terms*/) {}

    /// Makes a frame out of a buffer's bytes into another's.
    ///
    /// result  DMO_E_TYPE_NOT_SET or S_OK without a type, E_POINTER for null bytes, E_INVALIDARG for a buffer that cannot hold its picture
    /// throws  what MemoryShortage throws
    virtual HRESULT MakeFrame(const StreamTerms& terms, OutputBuffer to, InputBuffer from) = 0;

    /// All that is settled at this moment.
    StreamTerms CurrentTerms() const;

    PluginSettings settings;

private:
    /// Times of the held buffer, in ticks of 100 ns.
    struct BufferTimes {
        DWORD flags = 0;  // DMO_INPUT_DATA_BUFFERF_…, which outputs' flags are equal to
        REFERENCE_TIME timestamp = 0;
        REFERENCE_TIME timelength = 0;

        void Note(DWORD flags, REFERENCE_TIME time, REFERENCE_TIME length);
        void PassOn(DMO_OUTPUT_DATA_BUFFER& target) const;
    };

    /// The buffer that waits for ProcessOutput.
    struct HeldInput {
        ComPointer<IMediaBuffer> buffer;
        BufferTimes times;
    };

    /// What a frame begins with and goes on with. It holds the input itself, so that nobody frees that while the frame runs.
    struct TakenFrame {
        bool inputHeld = false;
        HeldInput input;
        StreamTerms terms;
    };

    HRESULT ChangeType(DWORD index, const DMO_MEDIA_TYPE* type, StreamSide side, DWORD flags);
    HRESULT CheckType(const DMO_MEDIA_TYPE& type, StreamSide side, DWORD flags) const;
    HRESULT StoreType(const DMO_MEDIA_TYPE& type, StreamSide side);
    void ReplaceType(StreamType type, StreamSide side);
    StreamType CurrentType(StreamSide side) const;
    HRESULT GiveCurrentType(DWORD index, StreamSide side, DMO_MEDIA_TYPE* target) const;

    bool HoldsInput() const { return held.buffer != nullptr || frameHoldsInput; }
    HRESULT AcceptsInput() const;
    HRESULT BeginFrame(bool outputGiven, TakenFrame& frame);
    void EndFrame(HeldInput& used, HRESULT result);
    static HRESULT GiveNothing(DMO_OUTPUT_DATA_BUFFER& target, bool inputHeld);
    HRESULT EnhanceInto(DMO_OUTPUT_DATA_BUFFER& target, const TakenFrame& frame);
    HRESULT RunFrame(const StreamTerms& terms, OutputBuffer to, InputBuffer from);

    const ObjectKind& kind;
    CriticalSection hostLock;  // of IMediaObject::Lock

    /// Guards what stands from here on. Nothing of a host is called under it: its buffers and types
    /// are asked, copied and released outside.
    mutable CriticalSection stateLock;
    StreamTerms stream;
    HeldInput held;
    bool frameRuns = false;        // a ProcessOutput is at work; only that one makes a frame
    bool frameHoldsInput = false;  // its input counts as held: nobody has flushed it since
};

}  // namespace clarivex
