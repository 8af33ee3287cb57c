// CVXVideoEffect: the enhancement as a video effect for any player that builds its own chain of filters.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <span>

#include "pipeline/plane_stream.h"
#include "platform/win32.h"
#include "shell/com_object.h"
#include "shell/saved_settings.h"
#include "shell/surface.h"
#include "shell/video_object.h"

namespace clarivex {

/// The media object for hosts of video effects. It shares nothing with another one, noise and caption included. Its pictures
/// are where Surface finds them, in and out, so a host may have rows of any length and put the picture anywhere in a buffer.
///
/// A stream is settled by the types that are set: one whose output is as large as its input keeps its size, one of three
/// halves is enlarged, and no other output is taken. High definition that the settings shut out is passed on as it is. A new
/// input type that the output type does not go with takes that away. Types that tell the same picture again go on with the
/// stream; another picture, or clearing the input type, starts a new one, as if the object were new.
class CVXVideoEffect : public CVXVideoObject, public IPersistStream {
public:
    /// ICVXSettings first: the identity.
    static std::span<const InterfaceEntry<CVXVideoEffect>> Interfaces();

    virtual ~CVXVideoEffect();

    /// The last step of making an object: the user's stored settings, which count as saved. Gives S_OK.
    HRESULT Complete();

    // IPersistStream: the settings, for hosts that keep the state of a chain. What is loaded stands until the next change.
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) override;

    /// S_OK when a setting is another than the one saved, loaded or started with last, else S_FALSE.
    HRESULT STDMETHODCALLTYPE IsDirty() override;

    /// Takes all settings, or none: E_FAIL for a stream that ends too early or holds no settings of this object, and what the
    /// stream's Read gives for a failure.
    HRESULT STDMETHODCALLTYPE Load(IStream* source) override;

    /// result  what the stream's Write gives, E_FAIL when it takes less than it was given
    HRESULT STDMETHODCALLTYPE Save(IStream* target, BOOL clearDirty) override;
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override;

protected:
    CVXVideoEffect();

private:
    bool Accepts(const DMO_MEDIA_TYPE& type, StreamSide side, const StreamTerms& terms) const override;
    uint32_t BytesOf(const DMO_MEDIA_TYPE& type, StreamSide side) const override;

    /// The types that go with the input type: the enlarged picture, where the settings want that, then the picture in its
    /// size. Colours that players would guess from the enlarged height, but not from the source's, are told: where the input's
    /// header has no room for that the first offer has the other header. DMO_E_TYPE_NOT_SET without an input type.
    HRESULT OfferOutputType(DWORD typeIndex, StreamTerms& terms, DMO_MEDIA_TYPE* type) const override;
    void Settle(StreamTerms& terms) override;
    HRESULT MakeFrame(const StreamTerms& terms, OutputBuffer to, InputBuffer from) override;

    PlanSettings Choice() const;
    PlaneRequest RequestFor(const PictureForm& source, const PictureForm& target, const StreamPlan& plan) const;
    void NoteSaved(const SavedSettings& now);

    std::optional<PictureForm> settledPicture;  // of the input type; guarded as the terms are
    std::atomic<bool> newStream = true;
    CriticalSection savedLock;
    SavedSettings saved;
    std::unique_ptr<PlaneStream> frames;  // of the stream at work; only a frame touches it
};

}  // namespace clarivex
