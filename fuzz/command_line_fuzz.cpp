// Bytes become the words behind the program's name: each is taken or refused, and a refusal is a line that can be shown.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/command_line.h"
#include "host/errors.h"

namespace {

using namespace clarivex;

void Demand(bool truth) {
    if (!truth) __builtin_trap();
}

/// Words end with a line end or a zero, so that seeds can be read.
std::vector<std::string> WordsIn(const uint8_t* bytes, size_t size) {
    std::vector<std::string> words;
    bool wordBegins = true;
    for (size_t i = 0; i < size; ++i) {
        if (wordBegins) words.emplace_back();
        wordBegins = bytes[i] == '\n' || bytes[i] == 0;
        if (!wordBegins) words.back() += static_cast<char>(bytes[i]);
    }
    return words;
}

bool IsALine(const std::string& text) {
    return !text.empty() && text.size() < 400 &&
           std::all_of(text.begin(), text.end(), [](char letter) { return letter >= ' ' && letter <= '~'; });
}

/// Whatever was taken is within the ranges that the commands rely on.
void DemandRanges(const CommandLine& line) {
    const EnhanceOptions& enhance = line.enhance;
    const CaptionOptions& caption = line.caption;
    Demand(enhance.sharpness >= 0.0f && enhance.sharpness <= 2.0f && enhance.frames > 0);
    Demand(enhance.plugin.empty() || (enhance.simd == "auto" && !enhance.caption));
    Demand(caption.frame >= 1 && caption.frame <= largestCaptionFrame);
    Demand(caption.size.width >= 1 && caption.size.width <= largestPictureSide);
    Demand(caption.size.height >= 1 && caption.size.height <= largestPictureSide && caption.sampleAspect.Known());
    Demand(line.tune.tuning.attempts >= 1 && line.tune.tuning.attempts <= mostTuningAttempts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::vector<std::string> words = WordsIn(bytes, size);
    std::vector<const char*> pointers;
    for (const std::string& word : words) pointers.push_back(word.c_str());
    try {
        DemandRanges(ParseCommandLine(pointers));
    } catch (const UsageError& error) {
        Demand(IsALine(error.what()));
    }
    return 0;
}
