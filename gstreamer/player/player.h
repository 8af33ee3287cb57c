// Brings together a film, its window, the keys and what is told.
#pragma once

#include <optional>
#include <string>

#include "gstreamer/player/film.h"
#include "gstreamer/player/film_source.h"
#include "gstreamer/player/handles.h"
#include "gstreamer/player/status_line.h"
#include "gstreamer/player/terminal.h"
#include "gstreamer/player/window.h"
#include "play/play_settings.h"

namespace clarivex {

class Player {
public:
    /// Throws PlayError for a film that is no file, and where there is no display or GStreamer lacks a part.
    explicit Player(const PlaySettings& given);

    /// Plays until the film, a person or a signal ends it. Throws PlayError for a film that cannot be played.
    void Run();

    /// Where the film stood at last.
    std::string LastPosition() const { return ClockTime(position); }

private:
    WindowEvents MakeWindowEvents();
    FilmEvents MakeFilmEvents();
    void WatchSignals();
    void Tick();
    void End() { g_main_loop_quit(loop.get()); }

    void Press(Key key);
    void Do(Control control);
    void SetPaused(bool paused);
    void Jump(gint64 distance);
    void StepFrame();
    void SetFullScreen(bool on);
    void DragSplit(int column);
    void TellKeys();

    void Tell(const std::string& text);
    void ShowStatus();

    PlaySettings settings;
    StatusLine status;
    const FilmSource source;
    std::unique_ptr<GMainLoop, ReleasedBy<g_main_loop_unref>> loop;
    Window window;
    Film film;
    TerminalKeys terminal;
    std::optional<std::string> failure;
    std::string lastTold;  // shown in the status for a while
    int ticksTold = 0;
    gint64 position = 0;
    LoopSource signals;
    LoopSource clock;
};

}  // namespace clarivex
