// One film on its way through GStreamer's playbin, the element, and out to screen and speakers.
#pragma once

#include <gst/video/video.h>

#include <functional>
#include <optional>
#include <string>

#include "gstreamer/player/enhancer.h"
#include "gstreamer/player/extent.h"
#include "gstreamer/player/handles.h"
#include "gstreamer/player/missing_plugins.h"
#include "gstreamer/player/seeker.h"
#include "gstreamer/player/sound_output.h"
#include "gstreamer/player/video_output.h"
#include "play/play_settings.h"

namespace clarivex {

/// What a film tells, from the main loop.
struct FilmEvents {
    std::function<Extent()> sized;  ///< the size of its pictures is known; gives the window's size, now made for them
    std::function<void()> begun;    ///< the first picture to be shown is there
    std::function<void()> ended;
    std::function<void(const std::string& why)> failed;
    std::function<void(const std::string& text)> noted;  ///< something is not as one would expect
};

/// Times are in nanoseconds.
class Film {
public:
    /// Pictures go into the X11 window. Throws PlayError where GStreamer lacks a part.
    Film(const std::string& uri, const PlaySettings& given, unsigned long window, FilmEvents told);
    ~Film();
    Film(const Film&) = delete;
    Film& operator=(const Film&) = delete;

    /// Goes to the first picture and stays there. What fails tells so by an event.
    void Prepare();

    /// Has all parts do as the settings say, from the next picture on, or in the one that stands.
    void Follow(const PlaySettings& given);

    /// False where the film allows no jumps, or has not begun.
    bool JumpTo(gint64 time) { return hasBegun && seeker.To(time); }
    void StepFrame();

    /// The window has another size or was uncovered.
    void Redraw(const Extent& window);

    /// The picture as it is shown in full size; none before the first.
    std::optional<Extent> Picture() const { return enhancer.Picture(); }

    /// Where the film stands, or is about to; what is not known is negative.
    gint64 Position() const { return seeker.Position(); }
    gint64 Duration() const { return seeker.Duration(); }

private:
    void MakePlaybin(const std::string& uri);
    void Run();
    void RemakePicture();

    void TakeMessage(GstMessage* message);
    void Arrive();
    bool GoToBeginning();
    void Begin();
    void NoteOddities();
    void Buffer(GstMessage* message);
    void Fail(GstMessage* message);
    void GoOnInSilence();
    std::optional<GstVideoInfo> Source() const;
    std::string ReasonOf(std::string said) const;

    FilmEvents events;
    PlaySettings settings;
    gint64 beginAt;
    VideoOutput video;
    Enhancer enhancer;
    SoundOutput sound;
    Reference<GstElement> playbin;
    Seeker seeker;
    MissingPlugins missing;
    bool isSized = false;
    bool hasBegun = false;
    bool isBuffering = false;
    LoopSource messages;
};

}  // namespace clarivex
