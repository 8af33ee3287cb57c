// The command that plays a film in a window.
#pragma once

#include "play/play_settings.h"

namespace clarivex {

/// Hands the process over to the player, which is a program of its own. Throws RunError where there is none; returns never.
[[noreturn]] void RunPlay(const PlaySettings& settings);

}  // namespace clarivex
