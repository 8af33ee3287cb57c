#include "gstreamer/player/film.h"

#include <clarivex/clarivex.h>

#include "gstreamer/player/parts.h"

namespace clarivex {

namespace {

bool IsHighDynamicRange(const GstVideoInfo& info) {
    const GstVideoTransferFunction curve = info.colorimetry.transfer;
    return curve == GST_VIDEO_TRANSFER_SMPTE2084 || curve == GST_VIDEO_TRANSFER_ARIB_STD_B67;
}

bool IsTaken(int side) { return side >= CVX_SMALLEST_SIDE && side <= CVX_LARGEST_SIDE; }

}  // namespace

Film::Film(const std::string& uri, const PlaySettings& given, unsigned long window, FilmEvents told)
    : events(std::move(told)),
      settings(given),
      beginAt(given.start * GST_USECOND),
      video(window),
      enhancer(given.look),
      sound(MakeSoundOutput()),
      playbin(MakePart("playbin")),
      seeker(playbin.get()) {
    MakePlaybin(uri);
    Follow(given);
}

Film::~Film() { gst_element_set_state(playbin.get(), GST_STATE_NULL); }

void Film::MakePlaybin(const std::string& uri) {
    g_object_set(playbin.get(), "uri", uri.c_str(), "video-filter", enhancer.Filter(), "video-sink", video.Sink(),
                 "audio-sink", sound.sink.get(), nullptr);
    const Reference<GstBus> bus(gst_element_get_bus(playbin.get()));
    const auto take = [](GstBus*, GstMessage* message, gpointer film) -> gboolean {
        static_cast<Film*>(film)->TakeMessage(message);
        return G_SOURCE_CONTINUE;
    };
    messages.Take(gst_bus_add_watch(bus.get(), take, this));
}

// What the player asks for.

void Film::Prepare() { gst_element_set_state(playbin.get(), GST_STATE_PAUSED); }

void Film::Run() {
    const bool stands = settings.paused || isBuffering;
    if (hasBegun) gst_element_set_state(playbin.get(), stands ? GST_STATE_PAUSED : GST_STATE_PLAYING);
}

void Film::Follow(const PlaySettings& given) {
    const bool wasPaused = settings.paused;
    settings = given;
    g_object_set(playbin.get(), "mute", given.muted, "volume", static_cast<double>(given.volume), nullptr);
    if (enhancer.Follow(given.look)) RemakePicture();
    if (wasPaused != given.paused) Run();
}

/// A picture that stands was made by other settings, or for another size.
void Film::RemakePicture() {
    if (hasBegun && settings.paused) seeker.Again();
}

void Film::StepFrame() {
    if (hasBegun) gst_element_send_event(playbin.get(), gst_event_new_step(GST_FORMAT_BUFFERS, 1, 1, TRUE, FALSE));
}

void Film::Redraw(const Extent& window) {
    if (hasBegun && video.Redraw(window)) RemakePicture();
}

// What GStreamer tells.

void Film::TakeMessage(GstMessage* message) {
    const bool isOwn = GST_MESSAGE_SRC(message) == GST_OBJECT_CAST(playbin.get());
    switch (GST_MESSAGE_TYPE(message)) {
        case GST_MESSAGE_ASYNC_DONE:
            if (isOwn) Arrive();
            break;
        case GST_MESSAGE_EOS: events.ended(); break;
        case GST_MESSAGE_ERROR: Fail(message); break;
        case GST_MESSAGE_BUFFERING: Buffer(message); break;
        case GST_MESSAGE_ELEMENT: missing.Take(message); break;
        case GST_MESSAGE_LATENCY: gst_bin_recalculate_latency(GST_BIN(playbin.get())); break;
        case GST_MESSAGE_CLOCK_LOST:
            Prepare();
            Run();
            break;
        default: break;
    }
}

void Film::Arrive() {
    seeker.Arrived();
    if (hasBegun) return;
    if (!Picture()) return events.failed(missing.Empty() ? "holds no video" : missing.Text());
    if (isSized || !GoToBeginning()) Begin();
}

/// Whether another picture than the one at hand is to be the first that is seen. It is asked for then.
bool Film::GoToBeginning() {
    isSized = true;
    const bool isFitted = !video.Redraw(events.sized());
    return (beginAt > 0 || !isFitted) && seeker.To(beginAt);
}

void Film::Begin() {
    hasBegun = true;
    NoteOddities();
    events.begun();
    Run();
}

void Film::NoteOddities() {
    gint audioStreams = 0;
    g_object_get(playbin.get(), "n-audio", &audioStreams, nullptr);
    if (!missing.Empty()) events.noted(missing.Text());
    if (audioStreams > 0 && !sound.isHeard) events.noted("there is no sound device: the film is played without sound");
    if (const auto source = Source(); source && IsHighDynamicRange(*source))
        events.noted("high dynamic range is not mapped to the screen's: colours look pale");
}

/// Waits for a slow network.
void Film::Buffer(GstMessage* message) {
    gint percent = 0;
    gst_message_parse_buffering(message, &percent);
    const bool isLow = percent < 100;
    if (isLow == isBuffering) return;
    isBuffering = isLow;
    Run();
}

void Film::Fail(GstMessage* message) {
    GError* told = nullptr;
    gst_message_parse_error(message, &told, nullptr);
    const Error error(told);
    const bool isSound = gst_object_has_as_ancestor(GST_MESSAGE_SRC(message), GST_OBJECT(sound.sink.get())) != 0;
    if (isSound && sound.isHeard) return GoOnInSilence();
    events.failed(missing.Empty() ? ReasonOf(error->message) : missing.Text());
}

/// The sound device has failed: the film begins anew without it, where it stood.
void Film::GoOnInSilence() {
    if (hasBegun) beginAt = Position();
    hasBegun = isSized = false;
    seeker.Arrived();
    gst_element_set_state(playbin.get(), GST_STATE_READY);
    sound = MakeSilence();
    g_object_set(playbin.get(), "audio-sink", sound.sink.get(), nullptr);
    Prepare();
}

/// The film's pictures as they are decoded.
std::optional<GstVideoInfo> Film::Source() const {
    GstPad* pad = nullptr;
    g_signal_emit_by_name(playbin.get(), "get-video-pad", 0, &pad);
    return VideoInfoAt(Reference<GstPad>(pad).get());
}

/// What GStreamer says, or what it does not know.
std::string Film::ReasonOf(std::string said) const {
    const auto source = Source();
    if (source && !(IsTaken(source->width) && IsTaken(source->height)))
        return "its pictures are " + std::to_string(source->width) + "x" + std::to_string(source->height) +
               "; sides from " + std::to_string(CVX_SMALLEST_SIDE) + " to " + std::to_string(CVX_LARGEST_SIDE) +
               " can be enhanced";
    if (said.ends_with('.')) said.pop_back();
    return "cannot be played: " + said;
}

}  // namespace clarivex
