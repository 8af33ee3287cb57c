#include "gstreamer/player/player.h"

#include <glib-unix.h>

#include <algorithm>

#include "gstreamer/player/parts.h"
#include "gstreamer/player/play_error.h"
#include "gstreamer/player/setting_controls.h"
#include "platform/posix/signal_pipe.h"
#include "play/keys.h"

namespace clarivex {

namespace {

constexpr guint ticksASecond = 5;
constexpr int ticksOfTold = 10;

}  // namespace

Player::Player(const PlaySettings& given)
    : settings(given),
      status(given.quiet),
      film(FindFilm(given.film)),
      loop(g_main_loop_new(nullptr, FALSE)),
      window(MakeWindowEvents()),
      video(window.Id()),
      enhancer(given),
      sound(MakeSoundOutput()),
      playbin(MakePart("playbin")),
      seeker(playbin.get()),
      terminal([this](Key key) { Press(key); }) {
    MakePlaybin();
    WatchSignals();
    window.SetFullScreen(given.fullScreen);
    const auto tick = [](gpointer player) -> gboolean {
        static_cast<Player*>(player)->ShowStatus();
        return G_SOURCE_CONTINUE;
    };
    clock.Take(g_timeout_add(1000 / ticksASecond, tick, this));
}

Player::~Player() { gst_element_set_state(playbin.get(), GST_STATE_NULL); }

WindowEvents Player::MakeWindowEvents() {
    return {.keyPressed = [this](Key key) { Press(key); },
            .dragged = [this](int column) { DragSplit(column); },
            .exposed =
                [this] {
                    if (hasBegun && video.Redraw(window.Size())) RemakePicture();
                },
            .closed = [this] { End(); }};
}

void Player::MakePlaybin() {
    g_object_set(playbin.get(), "uri", film.uri.c_str(), "video-filter", enhancer.Filter(), "video-sink", video.Sink(),
                 "audio-sink", sound.sink.get(), "mute", settings.muted, "volume", static_cast<double>(settings.volume),
                 nullptr);
    const Reference<GstBus> bus(gst_element_get_bus(playbin.get()));
    const auto take = [](GstBus*, GstMessage* message, gpointer player) -> gboolean {
        static_cast<Player*>(player)->TakeMessage(message);
        return G_SOURCE_CONTINUE;
    };
    messages.Take(gst_bus_add_watch(bus.get(), take, this));
}

/// A signal that was noted before there was a loop ends this one too.
void Player::WatchSignals() {
    if (SignalPipe() < 0) return;
    const auto end = [](gint, GIOCondition, gpointer player) -> gboolean {
        static_cast<Player*>(player)->End();
        return G_SOURCE_CONTINUE;
    };
    signals.Take(g_unix_fd_add(SignalPipe(), G_IO_IN, end, this));
}

void Player::Run() {
    gst_element_set_state(playbin.get(), GST_STATE_PAUSED);  // what fails tells so by a message
    g_main_loop_run(loop.get());
    status.Wipe();
    if (failure) throw PlayError(film.name + ": " + *failure);
}

void Player::Fail(const std::string& why) {
    if (!failure) failure = why;
    End();
}

// What the film tells.

void Player::TakeMessage(GstMessage* message) {
    const bool isOwn = GST_MESSAGE_SRC(message) == GST_OBJECT_CAST(playbin.get());
    switch (GST_MESSAGE_TYPE(message)) {
        case GST_MESSAGE_ASYNC_DONE:
            if (isOwn) Arrive();
            break;
        case GST_MESSAGE_EOS: End(); break;
        case GST_MESSAGE_ERROR: FailBy(message); break;
        case GST_MESSAGE_BUFFERING: Buffer(message); break;
        case GST_MESSAGE_ELEMENT: missing.Take(message); break;
        case GST_MESSAGE_LATENCY: gst_bin_recalculate_latency(GST_BIN(playbin.get())); break;
        case GST_MESSAGE_CLOCK_LOST:
            gst_element_set_state(playbin.get(), GST_STATE_PAUSED);
            SetPaused(settings.paused);
            break;
        default: break;
    }
}

void Player::Arrive() {
    if (!hasBegun)
        Begin();
    else
        seeker.Arrived();
}

/// The first picture is there, or it is known that there will be none.
void Player::Begin() {
    gint videoStreams = 0;
    gint audioStreams = 0;
    g_object_get(playbin.get(), "n-video", &videoStreams, "n-audio", &audioStreams, nullptr);
    const auto picture = enhancer.Picture();
    if (videoStreams == 0 || !picture) return Fail(missing.Empty() ? "holds no video" : missing.Text());
    hasBegun = true;
    if (!missing.Empty()) status.Note(film.name + ": " + missing.Text());
    if (audioStreams > 0 && !sound.isHeard) status.Note("there is no sound device: the film is played without sound");
    window.Show(film.title, *picture);
    if (settings.start > 0) Jump(settings.start * GST_USECOND);
    SetPaused(settings.paused);
}

/// Waits for a slow network.
void Player::Buffer(GstMessage* message) {
    gint percent = 0;
    gst_message_parse_buffering(message, &percent);
    const bool isLow = percent < 100;
    if (isLow == isBuffering) return;
    isBuffering = isLow;
    if (hasBegun && !settings.paused)
        gst_element_set_state(playbin.get(), isBuffering ? GST_STATE_PAUSED : GST_STATE_PLAYING);
}

void Player::FailBy(GstMessage* message) {
    GError* told = nullptr;
    gst_message_parse_error(message, &told, nullptr);
    const Error error(told);
    const bool isSound = gst_object_has_as_ancestor(GST_MESSAGE_SRC(message), GST_OBJECT(sound.sink.get())) != 0;
    if (isSound && sound.isHeard) return GoOnInSilence();
    Fail(missing.Empty() ? std::string("cannot be played: ") + error->message : missing.Text());
}

/// The sound device has failed; the film begins anew without it, where it stood.
void Player::GoOnInSilence() {
    settings.start = std::max<gint64>(position, 0) / GST_USECOND;
    hasBegun = false;
    gst_element_set_state(playbin.get(), GST_STATE_READY);
    sound = MakeSilence();
    g_object_set(playbin.get(), "audio-sink", sound.sink.get(), nullptr);
    gst_element_set_state(playbin.get(), GST_STATE_PAUSED);
}

// What a person asks for.

void Player::Press(Key key) {
    if (const auto control = ControlOf(key)) Do(*control);
}

void Player::Do(Control control) {
    if (const auto text = ChangeSetting(control, settings)) {
        Tell(*text);
        return Follow();
    }
    switch (control) {
        case Control::pause:
            SetPaused(!settings.paused);
            Tell(settings.paused ? "paused" : "playing");
            break;
        case Control::nextFrame: StepFrame(); break;
        case Control::backward: Jump(seeker.Position() - 5 * GST_SECOND); break;
        case Control::forward: Jump(seeker.Position() + 5 * GST_SECOND); break;
        case Control::farBackward: Jump(seeker.Position() - 60 * GST_SECOND); break;
        case Control::farForward: Jump(seeker.Position() + 60 * GST_SECOND); break;
        case Control::fullScreen: SetFullScreen(!window.IsFullScreen()); break;
        case Control::leaveFullScreen: SetFullScreen(false); break;
        case Control::help: TellKeys(); break;
        case Control::quit: End(); break;
        default: break;
    }
}

void Player::SetPaused(bool paused) {
    settings.paused = paused;
    if (hasBegun) gst_element_set_state(playbin.get(), paused || isBuffering ? GST_STATE_PAUSED : GST_STATE_PLAYING);
}

void Player::Jump(gint64 time) {
    if (!hasBegun) return;
    Tell(seeker.To(time) ? "at " + ClockTime(seeker.Position()) : "this film allows no jumps");
}

void Player::StepFrame() {
    SetPaused(true);
    gst_element_send_event(playbin.get(), gst_event_new_step(GST_FORMAT_BUFFERS, 1, 1.0, TRUE, FALSE));
    Tell("next frame");
}

void Player::SetFullScreen(bool on) {
    window.SetFullScreen(on);
    Tell(on ? "full screen" : "window");
}

void Player::DragSplit(int column) {
    const auto picture = enhancer.Picture();
    if (settings.split <= 0 || !picture) return;
    const double place = PlaceInPicture(column, *picture, window.Size());
    settings.split = std::max(0.001F, static_cast<float>(place));  // 0 is no split view
    Follow();
}

/// Has the parts follow the settings.
void Player::Follow() {
    g_object_set(playbin.get(), "mute", settings.muted, "volume", static_cast<double>(settings.volume), nullptr);
    if (enhancer.Follow(settings)) RemakePicture();
    ShowStatus();
}

/// A picture that stands was made before.
void Player::RemakePicture() {
    if (hasBegun && settings.paused) seeker.Again();
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
    if (!hasBegun) return;
    if (const gint64 now = seeker.Position(); now >= 0) position = now;
    std::string text = ClockTime(position) + " / " + ClockTime(seeker.Duration());
    if (settings.paused) text += " (paused)";
    text += "  " + (ticksTold > 0 ? lastTold : SettingsText(settings));
    ticksTold = std::max(0, ticksTold - 1);
    status.Show(text);
}

}  // namespace clarivex
