// The options of each command as tables.
#pragma once

#include <vector>

#include "host/option.h"
#include "host/options.h"
#include "play/play_settings.h"

namespace clarivex {

// Each table sets the structure that it was made of, which outlives it and holds the defaults when it is made.

std::vector<OptionGroup> OptionsOf(EnhanceOptions& options);
std::vector<OptionGroup> OptionsOf(PlaySettings& settings);
std::vector<OptionGroup> OptionsOf(CompareOptions& options);
std::vector<OptionGroup> OptionsOf(CaptionOptions& options);
std::vector<OptionGroup> OptionsOf(TuneOptions& options);

}  // namespace clarivex
