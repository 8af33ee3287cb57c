// Plays pictures through a media object exactly as a video player does: negotiation, buffers, times, one frame in and one
// frame out.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/buffer_layout.h"
#include "host/media_buffer.h"
#include "host/progress.h"
#include "host/video_type.h"
#include "platform/com_pointer.h"
#include "platform/win32.h"

namespace clarivex {

/// What the property page would set; the settings stored for the user are not consulted.
struct PlayerSettings {
    uint32_t mode = 2;  ///< 0 never, 1 auto, 2 always
    float sharpness = 1.0f;
    bool lighting = true;
    bool allowHd = true;
};

constexpr int32_t smallestSide = 16;  ///< the media object refuses smaller pictures

/// What came out of the talk about types.
enum class Negotiated {
    playing,        ///< Play may be called
    bypassedForHd,  ///< refused as high definition, which the settings ask for: the video plays without the plug-in
};

/// When a picture is shown, in ticks.
struct FrameTimes {
    int64_t start = 0;
    int64_t length = 0;
};

class Player {
public:
    /// Hands the settings to the object. Throws RunError when it does not take them.
    Player(ComPointer<IMediaObject> mediaObject, const VideoFormat& format, const PlayerSettings& settings);

    /// Gives back what the object holds.
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Agrees on types and makes the buffers. Call once, first. Throws RunError when the object refuses the video.
    Negotiated Negotiate();

    PictureSize OutputSize() const { return outputLayout.Size(); }

    /// Where the samples stand in the buffers that MakeInput and MakeOutput make. Valid behind Negotiate, for any thread.
    const BufferLayout& InputLayout() const { return inputLayout; }
    const BufferLayout& OutputLayout() const { return outputLayout; }

    /// Buffers for Play of the sizes that the object asks for, any number of them. Throw RunError when it asks for
    /// nonsense.
    ComPointer<MediaBuffer> MakeInput() const;
    ComPointer<MediaBuffer> MakeOutput() const;

    /// Plays the picture in `source` into `target`, in which samples that the object leaves unwritten keep their values.
    /// Without times the picture carries none. Throws RunError when the object reports a failure.
    void Play(MediaBuffer& source, MediaBuffer& target, const std::optional<FrameTimes>& times);

    /// Plays one 4:2:0 picture (Y, U, V; the format's size), timed by the format's rate, and gives the picture that comes
    /// out, 4:2:2 for YUY2 and 4:2:0 otherwise. Samples that the object leaves unwritten are the source's at the same
    /// place, and black beyond it. The planes are valid until the next call. Throws RunError as the other does.
    PicturePlanes Play(std::span<const uint8_t> samples);

    /// Tells the object that the stream has ended.
    void Finish();

    /// Has the time inside ProcessOutput noted for each frame from now on.
    void NoteTimes() { noteTimes = true; }
    std::span<const Clock::duration> ProcessTimes() const { return processTimes; }

private:
    bool OfferOutput(PictureSize& size);
    void FeedInput(MediaBuffer& source, const std::optional<FrameTimes>& times);
    void TakeOutput(MediaBuffer& target);
    std::optional<FrameTimes> TimesByRate() const;

    ComPointer<IMediaObject> object;
    VideoFormat video;
    PlayerSettings wanted;
    BufferLayout inputLayout;
    BufferLayout outputLayout;
    ComPointer<MediaBuffer> input;
    ComPointer<MediaBuffer> output;
    std::vector<uint8_t> unpacked;
    uint64_t framesPlayed = 0;
    bool noteTimes = false;
    std::vector<Clock::duration> processTimes;
};

/// When a frame starts, in ticks, rounded down. `rate` must be known. Exact for as long as the result fits.
int64_t FrameStart(uint64_t frame, Ratio rate);

}  // namespace clarivex
