#include "gstreamer/player/player.h"

#include <glib-unix.h>

#include <algorithm>

#include "gstreamer/player/play_error.h"
#include "gstreamer/player/setting_controls.h"
#include "platform/posix/signal_pipe.h"
#include "play/keys.h"

namespace clarivex {

namespace {

constexpr guint ticksASecond = 5;
constexpr int ticksOfTold = 10;
constexpr gint64 jump = 5 * GST_SECOND;
constexpr gint64 farJump = 60 * GST_SECOND;

}  // namespace

Player::Player(const PlaySettings& given)
    : settings(given),
      status(given.quiet),
      source(FindFilm(given.film)),
      loop(g_main_loop_new(nullptr, FALSE)),
      window(MakeWindowEvents()),
      film(source.uri, given, window.Id(), MakeFilmEvents()),
      terminal([this](Key key) { Press(key); }) {
    WatchSignals();
    window.SetFullScreen(given.fullScreen);
    const auto tick = [](gpointer player) -> gboolean {
        static_cast<Player*>(player)->Tick();
        return G_SOURCE_CONTINUE;
    };
    clock.Take(g_timeout_add(1000 / ticksASecond, tick, this));
}

WindowEvents Player::MakeWindowEvents() {
    return {.keyPressed = [this](Key key) { Press(key); },
            .dragged = [this](int column) { DragSplit(column); },
            .exposed = [this] { film.Redraw(window.Size()); },
            .closed = [this] { End(); }};
}

FilmEvents Player::MakeFilmEvents() {
    return {.sized = [this] { return window.MakeFor(*film.Picture()); },
            .begun = [this] { window.Show(source.title); },
            .ended = [this] { End(); },
            .failed =
                [this](const std::string& why) {
                    if (!failure) failure = why;
                    End();
                },
            .noted = [this](const std::string& text) { status.Tell("note: " + source.name + ": " + text); }};
}

void Player::WatchSignals() {
    if (SignalPipe() < 0) return;
    const auto end = [](gint, GIOCondition, gpointer player) -> gboolean {
        static_cast<Player*>(player)->End();
        return G_SOURCE_CONTINUE;
    };
    signals.Take(g_unix_fd_add(SignalPipe(), G_IO_IN, end, this));
}

void Player::Tick() {
    window.HandleEvents();
    ShowStatus();
}

void Player::Run() {
    film.Prepare();
    g_main_loop_run(loop.get());
    status.Wipe();
    if (failure) throw PlayError(source.name + ": " + *failure);
}

// What a person asks for.

void Player::Press(Key key) {
    if (const auto control = ControlOf(key)) Do(*control);
}

void Player::Do(Control control) {
    if (const auto text = ChangeSetting(control, settings)) {
        film.Follow(settings);
        return Tell(*text);
    }
    switch (control) {
        case Control::pause:
            SetPaused(!settings.paused);
            Tell(settings.paused ? "paused" : "playing");
            break;
        case Control::nextFrame: StepFrame(); break;
        case Control::backward: Jump(-jump); break;
        case Control::forward: Jump(jump); break;
        case Control::farBackward: Jump(-farJump); break;
        case Control::farForward: Jump(farJump); break;
        case Control::fullScreen: SetFullScreen(!window.IsFullScreen()); break;
        case Control::leaveFullScreen: SetFullScreen(false); break;
        case Control::help: TellKeys(); break;
        case Control::quit: End(); break;
        default: break;
    }
}

void Player::SetPaused(bool paused) {
    settings.paused = paused;
    film.Follow(settings);
}

void Player::Jump(gint64 distance) {
    Tell(film.JumpTo(film.Position() + distance) ? "at " + ClockTime(film.Position()) : "no jumps here");
}

void Player::StepFrame() {
    SetPaused(true);
    film.StepFrame();
    Tell("next frame");
}

void Player::SetFullScreen(bool on) {
    window.SetFullScreen(on);
    Tell(on ? "full screen" : "window");
}

void Player::DragSplit(int column) {
    const auto picture = film.Picture();
    if (settings.look.split <= 0 || !picture) return;
    const auto place = static_cast<float>(PlaceInPicture(column, *picture, window.Size()));
    settings.look.split = std::max(0.001F, place);  // 0 is no split view
    film.Follow(settings);
    ShowStatus();
}

void Player::TellKeys() {
    for (const KeyRow& row : KeyTable()) status.Tell(NamesOf(row) + ": " + std::string(row.meaning));
}

// What is told.

void Player::Tell(const std::string& text) {
    if (!status.IsShown()) return status.Tell(text);
    lastTold = text;
    ticksTold = ticksOfTold;
    ShowStatus();
}

void Player::ShowStatus() {
    if (const gint64 now = film.Position(); now >= 0) position = now;
    std::string text = ClockTime(position) + " / " + ClockTime(film.Duration());
    if (settings.paused) text += " (paused)";
    status.Show(text + "  " + (ticksTold > 0 ? lastTold : LookText(settings.look)));
    ticksTold = std::max(0, ticksTold - 1);
}

}  // namespace clarivex
