// CVXMediaObject: the plug-in as the player sees it, a media object with one input and one output stream.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

#include "pipeline/frame_pipeline.h"
#include "platform/player.h"
#include "platform/win32.h"
#include "shell/com_object.h"
#include "shell/critical_section.h"
#include "shell/media_type.h"
#include "shell/plugin_settings.h"
#include "shell/settings.h"
#include "shell/stream_plan.h"

namespace clarivex {

/// Negotiates types, keeps at most one input buffer, and makes each frame inside ProcessOutput on the caller's thread.
/// The player serialises these calls; the settings, the switch and Lock may be used from other threads meanwhile.
/// Comes in the two shapes of com_object.h. No exception leaves a method.
///
/// Stream indices other than 0 give DMO_E_INVALIDSTREAMINDEX and null pointers E_POINTER, in the order in which the
/// arguments stand, where a method does not say otherwise.
class CVXMediaObject : public IMediaObject,
                       public IWMPPluginEnable,
                       public ISpecifyPropertyPages,
                       public IPropertyBag,
                       public ICVXSettings {
public:
    /// ICVXSettings first: the identity.
    static std::span<const InterfaceEntry<CVXMediaObject>> Interfaces();

    CVXMediaObject(const CVXMediaObject&) = delete;
    CVXMediaObject& operator=(const CVXMediaObject&) = delete;

    // IMediaObject: types.
    HRESULT STDMETHODCALLTYPE GetStreamCount(DWORD* inputs, DWORD* outputs) override;
    HRESULT STDMETHODCALLTYPE GetInputStreamInfo(DWORD index, DWORD* flags) override;
    HRESULT STDMETHODCALLTYPE GetOutputStreamInfo(DWORD index, DWORD* flags) override;

    /// The offered subtypes, or the input type itself once it is set, whatever the index below 3. A null type asks only
    /// whether the index exists.
    HRESULT STDMETHODCALLTYPE GetInputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) override;

    /// Decides about the stream, anew on each call, and offers the one output type that goes with the input type,
    /// whatever the index below 3. A null type decides nothing.
    HRESULT STDMETHODCALLTYPE GetOutputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) override;

    /// The clear flag looks at no type. Any other flag tests only; a refusal is S_FALSE with the test flag and
    /// DMO_E_TYPE_NOT_ACCEPTED otherwise. Every call starts a new stream with the next frame.
    HRESULT STDMETHODCALLTYPE SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) override;

    /// As SetInputType, but starts no stream and refuses every type while no input type is set.
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
    /// that cannot hold the picture of its type.
    HRESULT STDMETHODCALLTYPE ProcessOutput(DWORD flags, DWORD count, DMO_OUTPUT_DATA_BUFFER* buffers,
                                            DWORD* status) override;

    /// Non-zero enters, zero leaves. Nothing in the object takes this lock by itself.
    HRESULT STDMETHODCALLTYPE Lock(LONG lock) override;

    virtual ~CVXMediaObject();

    /// The last step of making an object: the user's stored settings. Gives S_OK.
    HRESULT Complete();

    /// The icon that the player shows, as platform/resources.h tells.
    virtual HRESULT LoadIconStream(IStream** stream);

    // IWMPPluginEnable.
    HRESULT STDMETHODCALLTYPE SetEnable(BOOL enable) override;
    HRESULT STDMETHODCALLTYPE GetEnable(BOOL* enable) override;

    // ISpecifyPropertyPages.
    HRESULT STDMETHODCALLTYPE GetPages(CAUUID* pages) override;

    /// IPropertyBag. Serves "IconStreams", in any case of letters; other names leave `value` as it was.
    HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog* errorLog) override;
    HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override;

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
    /// Checks for an update of the plug-in and gives the engine of the process its start state.
    CVXMediaObject();

private:
    struct BufferReleaser {
        void operator()(IMediaBuffer* buffer) const { buffer->Release(); }
    };
    using HeldBuffer = std::unique_ptr<IMediaBuffer, BufferReleaser>;

    // Times of the held buffer, in ticks of 100 ns.
    struct BufferTimes {
        bool hasTime = false;
        bool hasLength = false;
        REFERENCE_TIME timestamp = 0;
        REFERENCE_TIME timelength = 0;

        void Note(DWORD flags, REFERENCE_TIME time, REFERENCE_TIME length);
        void PassOn(DMO_OUTPUT_DATA_BUFFER& target) const;
    };

    // A stream's type and the image bytes that follow from it.
    struct StreamType {
        MediaType type;
        uint32_t imageBytes = 0;
    };

    HRESULT ChangeType(DWORD index, const DMO_MEDIA_TYPE* type, StreamSide side, DWORD flags);
    HRESULT CheckType(const DMO_MEDIA_TYPE& type, StreamSide side, DWORD flags) const;
    static HRESULT StoreType(const DMO_MEDIA_TYPE& type, StreamType& stream);
    HRESULT OfferOutputType(DMO_MEDIA_TYPE* type);
    bool DecideStream(VideoHeader& header);

    HRESULT GiveNothing(DMO_OUTPUT_DATA_BUFFER& target) const;
    HRESULT EnhanceInto(IMediaBuffer& target);
    HRESULT RunFrame(OutputBuffer to, InputBuffer from);
    FrameRequest NextRequest();

    CriticalSection lock;
    StreamType input;
    StreamType output;
    MediaType sourceType;  // the input type as it was when the output type was offered
    HeldBuffer heldInput;
    BufferTimes times;
    PluginSettings settings;
    StreamPlan plan;
    std::atomic<bool> scalingActive = false;  // plan.scalingOn for the property page's thread
    bool newStream = true;
    FramePipeline pipeline;
};

}  // namespace clarivex
