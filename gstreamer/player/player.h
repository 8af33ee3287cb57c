// Plays one film: brings together GStreamer's playbin, the window, the keys and what is told.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "gstreamer/player/enhancer.h"
#include "gstreamer/player/film_source.h"
#include "gstreamer/player/handles.h"
#include "gstreamer/player/missing_plugins.h"
#include "gstreamer/player/seeker.h"
#include "gstreamer/player/sound_output.h"
#include "gstreamer/player/status_line.h"
#include "gstreamer/player/terminal.h"
#include "gstreamer/player/video_output.h"
#include "gstreamer/player/window.h"
#include "play/play_settings.h"

namespace clarivex {

class Player {
public:
    /// Throws PlayError for a film that is no file, and where there is no display or GStreamer lacks a part.
    explicit Player(const PlaySettings& settings);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Plays until the film or somebody ends it. Throws PlayError for a film that cannot be played.
    void Run();

    /// Where the film stood at last.
    std::string LastPosition() const { return ClockTime(position); }

private:
    WindowEvents MakeWindowEvents();
    void MakePlaybin();
    void WatchSignals();
    void End() { g_main_loop_quit(loop.get()); }
    void Fail(const std::string& why);

    // What the film tells.
    void TakeMessage(GstMessage* message);
    void Begin();
    void Arrive();
    void Buffer(GstMessage* message);
    void FailBy(GstMessage* message);
    void GoOnInSilence();

    // What a person asks for.
    void Press(Key key);
    void Do(Control control);
    void SetPaused(bool paused);
    void Jump(gint64 time);
    void StepFrame();
    void SetFullScreen(bool on);
    void DragSplit(int column);
    void Follow();
    void RemakePicture();
    void TellKeys();

    void ShowStatus();
    void Tell(const std::string& text);

    PlaySettings settings;
    StatusLine status;
    const FilmSource film;
    std::unique_ptr<GMainLoop, ReleasedBy<g_main_loop_unref>> loop;
    Window window;
    VideoOutput video;
    Enhancer enhancer;
    SoundOutput sound;
    Reference<GstElement> playbin;
    Seeker seeker;
    TerminalKeys terminal;
    MissingPlugins missing;
    std::optional<std::string> failure;
    std::string lastTold;  // beside the status for a while
    int ticksTold = 0;
    gint64 position = 0;
    bool hasBegun = false;
    bool isBuffering = false;
    LoopSource messages;
    LoopSource signals;
    LoopSource clock;
};

}  // namespace clarivex
