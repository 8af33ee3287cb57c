// Bytes become the words behind the program's name: each is taken or refused, and a refusal is a line that can be shown.
#include <vector>

#include "fuzz/support/target.h"
#include "host/command_line.h"
#include "host/errors.h"
#include "host/help_text.h"
#include "host/option_values.h"

namespace clarivex {
namespace {

bool IsSide(int32_t side) { return side >= 1 && side <= largestPictureSide; }

void DemandRanges(const EnhanceOptions& enhance) {
    const PictureOptions& picture = enhance.picture;
    Demand(picture.sharpness >= 0.0f && picture.sharpness <= 2.0f && enhance.part.frames > 0, "a range of enhance");
    Demand(
        picture.plugin.empty() || (picture.simd == "auto" && !picture.caption && picture.limits == SizeLimits::plugin),
        "a plug-in and its own options");
    Demand(enhance.part.start >= 0 && enhance.part.start <= longestTime && enhance.part.duration > 0, "a time");
    const FilmOptions& film = enhance.film;
    Demand(!film.lossless || (film.encoder.empty() && !film.quality), "an encoder without loss");
    Demand(!film.quality || (*film.quality >= 0 && *film.quality <= 10000), "a quality");
    Demand(!enhance.inputs.empty() && (enhance.folder.empty() ? enhance.inputs.size() == 1 : enhance.output.empty()) &&
               (enhance.folder.empty() || std::ranges::count(enhance.inputs, "-") == 0),
           "files and a folder");
}

void DemandRanges(const CompareOptions& compare) {
    Demand(compare.zoom >= 1 && compare.zoom <= largestZoom && compare.at.value_or(0) >= 0, "a range of compare");
    Demand(compare.output.size() >= 4, "a picture without its ending");
    if (!compare.crop) return;
    const auto [size, x, y] = *compare.crop;
    Demand(size.width >= 1 && size.height >= 1 && x >= 0 && y >= 0 && x + size.width <= largestEnlargedSide &&
               y + size.height <= largestEnlargedSide,
           "a part outside every picture");
}

/// Whatever was taken is within the ranges that the commands rely on.
void DemandRanges(const CommandLine& line) {
    const CaptionOptions& caption = line.caption;
    if (line.command == Command::enhance) DemandRanges(line.enhance);
    if (line.command == Command::compare) DemandRanges(line.compare);
    if (line.command == Command::help) Demand(!HelpText(line.help).empty(), "no help");
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
