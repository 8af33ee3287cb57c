// Bytes become the words behind the program's name: each is taken or refused, and a refusal is a line that can be shown.
#include <vector>

#include "fuzz/support/target.h"
#include "host/command_line.h"
#include "host/errors.h"

namespace clarivex {
namespace {

bool IsSide(int32_t side) { return side >= 1 && side <= largestPictureSide; }

/// Whatever was taken is within the ranges that the commands rely on.
void DemandRanges(const CommandLine& line) {
    const EnhanceOptions& enhance = line.enhance;
    const CaptionOptions& caption = line.caption;
    Demand(enhance.picture.sharpness >= 0.0f && enhance.picture.sharpness <= 2.0f && enhance.part.frames > 0,
           "a range of enhance");
    Demand(enhance.picture.plugin.empty() || (enhance.picture.simd == "auto" && !enhance.picture.caption),
           "a plug-in and its own options");
    Demand(caption.frame >= 1 && caption.frame <= largestCaptionFrame, "the caption's frame");
    Demand(IsSide(caption.size.width) && IsSide(caption.size.height) && caption.sampleAspect.Known(), "its size");
    Demand(line.tune.tuning.attempts >= 1 && line.tune.tuning.attempts <= mostTuningAttempts, "a number of attempts");
}

void DemandALine(const std::string& text) {
    const auto isShown = [](char letter) { return letter >= ' ' && letter <= '~'; };
    Demand(!text.empty() && text.size() < 400 && std::ranges::all_of(text, isShown), "a refusal that is no line");
}

}  // namespace
}  // namespace clarivex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    using namespace clarivex;
    std::string text(bytes, bytes + size);
    std::ranges::replace(text, '\n', '\0');  // words end with a line end or a zero, so that seeds can be read
    std::vector<const char*> words;
    for (size_t start = 0; start < text.size(); start += std::strlen(words.back()) + 1) words.push_back(&text[start]);
    try {
        DemandRanges(ParseCommandLine(words));
    } catch (const UsageError& error) {
        DemandALine(error.what());
    }
    return 0;
}
