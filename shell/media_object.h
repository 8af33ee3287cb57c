// CVXMediaObject: the plug-in as the player sees it.
#pragma once

#include <atomic>
#include <span>

#include "pipeline/frame_pipeline.h"
#include "platform/player.h"
#include "platform/win32.h"
#include "shell/com_object.h"
#include "shell/video_object.h"

namespace clarivex {

/// The media object for the player, which switches it on and off and shows its icon. What a stream needs is the object's
/// own: two objects on two threads do not know of each other, but for what the streams of a process have in common.
class CVXMediaObject : public CVXVideoObject, public IWMPPluginEnable, public IPropertyBag {
public:
    /// ICVXSettings first: the identity.
    static std::span<const InterfaceEntry<CVXMediaObject>> Interfaces();

    virtual ~CVXMediaObject();

    /// Every call, whatever it gives, starts a new stream with the next frame.
    HRESULT STDMETHODCALLTYPE SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) override;

    /// The icon that the player shows, with the results of LoadIconStream in platform/resources.h.
    virtual HRESULT LoadIconStream(IStream** stream);

    // IWMPPluginEnable.
    HRESULT STDMETHODCALLTYPE SetEnable(BOOL enable) override;
    HRESULT STDMETHODCALLTYPE GetEnable(BOOL* enable) override;

    /// IPropertyBag. Serves "IconStreams", in any case of letters; other names leave `value` as it was.
    HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog* errorLog) override;
    HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override;

protected:
    /// Checks for an update of the plug-in.
    CVXMediaObject();

    /// What the next frame is asked for; takes the notes of a new stream and of a changed sharpness.
    FrameRequest NextRequest() { return RequestFor(CurrentTerms()); }

    /// What the object's stream holds; for tests, between frames.
    StreamState& Stream() { return pipeline.Stream(); }

private:
    bool Accepts(const DMO_MEDIA_TYPE& type, StreamSide side, const StreamTerms& terms) const override;
    uint32_t BytesOf(const DMO_MEDIA_TYPE& type, StreamSide side) const override;

    /// Decides about the stream, anew on each call, and offers the one output type that goes with the input type,
    /// whatever the index below the number of formats.
    HRESULT OfferOutputType(DWORD typeIndex, StreamTerms& terms, DMO_MEDIA_TYPE* type) const override;
    HRESULT MakeFrame(const StreamTerms& terms, OutputBuffer to, InputBuffer from) override;

    bool DecideStream(VideoHeader& header, StreamPlan& plan) const;
    FrameRequest RequestFor(const StreamTerms& terms);

    std::atomic<bool> newStream = true;
    FramePipeline pipeline;
};

}  // namespace clarivex
