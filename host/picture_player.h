// Sends pictures of any video through the media object, set up as a person asked for.
#pragma once

#include <optional>

#include "host/options.h"
#include "host/player.h"
#include "host/plugin_library.h"
#include "host/report.h"
#include "host/video_stream.h"

namespace clarivex {

/// A frame on its way to the media object, and one that comes from it. Made once, used again for frame after frame.
struct SourceFrame {
    VideoFrame frame;
    WritablePlanes planes;  ///< where its picture goes: in the buffer if that has no gaps, otherwise in the samples
    std::vector<uint8_t> samples;
    ComPointer<MediaBuffer> buffer;
};
struct EnhancedFrame {
    VideoFrame frame;
    ComPointer<MediaBuffer> buffer;
    std::vector<uint8_t> passed;  ///< the source's samples, where they pass unchanged
    std::vector<uint8_t> unpacked;
    std::vector<uint8_t> cropped;
};

/// One media object and what stands around it. Load, Play and PlanesOf may run on three threads at once, each for another
/// frame.
class PicturePlayer {
public:
    /// Negotiates. Notes and warnings tell what is not done to such pictures. Throws RunError when the object refuses them,
    /// UsageError where no plug-in can be loaded.
    PicturePlayer(const PictureOptions& options, const VideoInfo& video, Report& report);

    /// Size of the pictures that PlanesOf gives.
    PictureSize OutputSize() const { return writtenSize; }
    bool GivesFullHeightChroma() const { return !bypassed && format == SampleFormat::yuy2; }

    SourceFrame MakeSource() const;
    EnhancedFrame MakeEnhanced() const;

    /// Brings a frame that was read into its planes to where the media object reads it.
    void Load(SourceFrame& source) const;

    /// Enhances a frame; what comes with it changes hands. Throws RunError when the object reports a failure.
    void Play(SourceFrame& source, EnhancedFrame& target);

    /// The planes of an enhanced frame without gaps, valid as long as it; empty where it has no picture.
    PicturePlanes PlanesOf(EnhancedFrame& frame) const;

    /// Tells the object that the stream has ended.
    void Finish();

    void NoteTimes() { player.NoteTimes(); }
    std::span<const Clock::duration> ProcessTimes() const { return player.ProcessTimes(); }

private:
    PictureSize PlayedSize() const { return bypassed ? sourceSize : player.OutputSize(); }
    void TellLimits(const PictureOptions& options, Report& report) const;
    std::optional<FrameTimes> TimesOf(const VideoFrame& frame) const;
    PicturePlanes Cropped(const PicturePlanes& planes, std::vector<uint8_t>& scratch) const;

    std::optional<PluginLibrary> plugin;
    PictureSize sourceSize;
    SampleFormat format;
    Ratio timeBase;
    Player player;
    bool bypassed;
    bool writesAll;  // the object leaves no sample of the output as it was
    PictureSize writtenSize;
};

}  // namespace clarivex
