#include "host/play.h"

#include <filesystem>

#include "host/errors.h"
#include "platform/program.h"

namespace clarivex {

namespace {

namespace files = std::filesystem;

/// Beside this program where both are built, else where they are installed.
files::path FindPlayer() {
    const files::path folder = ProgramFolder();
    std::error_code error;
    for (const char* path : {"clarivex-play", "../libexec/clarivex/clarivex-play"})
        if (files::exists(folder / path, error)) return folder / path;
    throw RunError("play needs the player clarivex-play, which the package gstreamer1.0-clarivex brings");
}

}  // namespace

void RunPlay(const PlaySettings& settings) {
    const std::string player = FindPlayer().lexically_normal();
    throw RunError(player + ": cannot be started: " + BecomeProgram(player, PlayWords(settings)));
}

}  // namespace clarivex
