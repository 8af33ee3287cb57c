// The unscaled walk once more, sample by sample.
#pragma once

#include <algorithm>

#include "algorithms/detail_fir.h"
#include "algorithms/readable_row.h"
#include "tests/simd/plain_kernels.h"

namespace clarivex {

/// What the walk leaves in a column of a row of the source's luma.
///
/// gain  of the vertical detail, sixteenths
inline int32_t PlainUnscaled(const SourceImage& source, const DetailTaps& taps, int32_t gain, int32_t x, int32_t y) {
    const PlaneView& luma = source.planes.luma;
    const auto at = [&](int32_t column, int32_t row) {
        const uint8_t* sample = luma.Row(row) + column;
        return int32_t{sample < source.end ? *sample : luma.Row(row)[luma.width - 1]};
    };
    if (y == 0 || y == luma.height - 1) return at(x, y);
    const auto sharpened = [&](int32_t column) {
        const int32_t detail = 2 * at(column, y) - at(column, y - 1) - at(column, y + 1);
        return std::clamp(at(column, y) + ((gain * detail + 4) >> 4), 0, 255);
    };
    const int32_t end = 4 + (luma.width - 5) / 4 * 4;
    if (x < 4) return sharpened(x);
    if (x >= end) return (PlainCentred(sharpened(x)) + 32768) >> 8;
    int32_t sum = x % 2 == 0 ? 4088 : 4072;
    for (int32_t k = 4; k < 12; ++k) sum += (taps[static_cast<size_t>(k)] * PlainCentred(sharpened(x + k - 8))) >> 16;
    return std::clamp(sum >> 5, 0, 255);
}

}  // namespace clarivex
