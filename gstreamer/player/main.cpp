// clarivex-play: what `clarivex play` starts. Plays one film in a window, through the element that it is built with.
#include <cstdio>
#include <exception>
#include <span>

#include "gstreamer/element.h"
#include "gstreamer/player/play_error.h"
#include "gstreamer/player/player.h"
#include "platform/console.h"
#include "play/play_settings.h"

namespace {

using namespace clarivex;

enum ExitCode { done = 0, runFailed = 1, wrongUse = 2 };

int Fail(int code, const std::string& why) {
    std::fprintf(stderr, "clarivex: %s\n", why.c_str());
    return code;
}

void StartGStreamer() {
    g_setenv("GST_GL_WINDOW", "x11", TRUE);  // our window is one of X11, in every session
    GError* failure = nullptr;
    if (gst_init_check(nullptr, nullptr, &failure) == 0)
        throw PlayError(std::string("GStreamer does not start: ") + Error(failure)->message);
    if (!RegisterElement(nullptr)) throw PlayError("GStreamer does not take the element clarivex");
}

int Play(const PlaySettings& settings) {
    StartGStreamer();
    Player player(settings);
    player.Run();
    if (NotedSignal() == 0) return done;
    return Fail(128 + NotedSignal(), settings.film + ": interrupted at " + player.LastPosition());
}

}  // namespace

int main(int argumentCount, char** arguments) {
    FillStandardStreams();
    ReportFailedWrites();
    NoteSignals();
    const auto settings = ReadPlayWords(std::span<const char* const>(arguments, arguments + argumentCount).subspan(1));
    if (!settings) return Fail(wrongUse, "this program is started by clarivex play; clarivex help play shows the use");
    try {
        return Play(*settings);
    } catch (const std::exception& error) {
        return Fail(runFailed, error.what());
    }
}
