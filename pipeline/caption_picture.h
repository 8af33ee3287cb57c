// The caption alone, for looking at: one frame of it over plain grey, through the output stage that video goes through.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "overlay/font_engine.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// Draws frame `frame` of the caption, from 1 on, as a stream of pictures of this size shows it, without noise and tone.
///
/// width, height  of the picture, 1 … 16384
/// pixelAspect    width of a pixel in relation to its height; limited to 1/64 … 64, and 1 when that is no such number
/// result         samples of a 4:2:0 picture without gaps: Y, U, V; plain grey where the caption is not
std::vector<uint8_t> DrawCaptionPicture(int32_t frame, int32_t width, int32_t height, float pixelAspect,
                                        std::unique_ptr<FontEngine> fonts, const KernelTable& kernels);

}  // namespace clarivex
