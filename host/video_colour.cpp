#include "host/video_colour.h"

namespace clarivex {

namespace {

// Code points of H.273.
constexpr VideoColour highDefinition{.primaries = 1, .transfer = 1, .matrix = 1};
constexpr VideoColour lines625{.primaries = 5, .transfer = 6, .matrix = 5};
constexpr VideoColour lines525{.primaries = 6, .transfer = 6, .matrix = 6};

VideoColour AssumedFor(int32_t lines) {
    if (lines > 576) return highDefinition;
    return lines > 480 || lines == 288 ? lines625 : lines525;
}

void Fill(int32_t& code, int32_t assumed) {
    if (code <= 0 || code == VideoColour::untold) code = assumed;
}

}  // namespace

VideoColour WithAssumedColour(VideoColour told, int32_t lines) {
    const VideoColour assumed = AssumedFor(lines);
    Fill(told.primaries, assumed.primaries);
    Fill(told.transfer, assumed.transfer);
    Fill(told.matrix, assumed.matrix);
    return told;
}

}  // namespace clarivex
