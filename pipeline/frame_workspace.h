// Working memory of the frame path that is kept between frames so that none is allocated while the picture's size stays.
#pragma once

#include "algorithms/slack_row.h"
#include "algorithms/working_image.h"

namespace clarivex {

/// Rows of the output stages.
struct OutputScratch {
    SlackRow<uint8_t> chroma;  ///< interleaved chroma samples of a row
    SlackRow<uint8_t> tonedLuma;
    SlackRow<uint8_t> tonedChroma;
    SlackRow<int16_t> keep;        ///< keep factors of a row by column
    SlackRow<int16_t> chromaKeep;  ///< and by chroma sample
    SlackRow<uint8_t> lumaTerms;
    SlackRow<uint8_t> chromaTerms;
};

struct FrameWorkspace {
    WorkingImage split;           ///< a packed frame as planes
    WorkingImage enhanced;        ///< what the engine writes, without luma where that goes to the output row by row
    SlackRow<uint8_t> unwritten;  ///< a row of luma that the engine has not written
    OutputScratch output;
};

}  // namespace clarivex
