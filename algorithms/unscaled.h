// Enhancement of luma at its own size: a vertical sharpener and a short filter along the row in one walk.
#pragma once

#include <cstdint>

#include "algorithms/detail_fir.h"
#include "algorithms/readable_row.h"
#include "algorithms/sharpen_params.h"
#include "algorithms/slack_row.h"

namespace clarivex {

/// Working rows of EnhanceUnscaled, kept between frames.
struct UnscaledScratch {
    SlackRow<uint8_t> sharpened;
    SlackRow<int16_t> words;
    SlackRow<uint8_t> rowCopies[3];
};

/// Walks over the luma plane; with a single tap and inactive gains it is copied instead.
///
/// target   planes of at least the source's size with strides of a multiple of 64; not the source. Luma columns are
///          written up to the width rounded up to even.
/// taps     post filter, of which entries 4 … 11 count.
/// column   gains of the vertical sharpener; its knee does not matter.
/// edges    the first and the last row are copied, the first four columns get the vertical sharpener only, and so does
///          the last group of four, whose samples of 128 … 254 come out one higher. Pictures narrower than 9 are left.
void EnhanceUnscaled(const ImagePlanes& target, const SourceImage& source, const DetailTaps& taps,
                     const SharpenParams& column, UnscaledScratch& scratch, const KernelTable& kernels);

}  // namespace clarivex
