// Luma doubled on both axes at once: 16-bit samples between the passes, rounded to 8 bits only at the end.
#pragma once

#include <cstdint>

#include "algorithms/detail_fir.h"
#include "algorithms/filter_design.h"
#include "algorithms/slack_row.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// What runs between expanding the rows and rounding, and with which values.
struct WideStages {
    TwofoldTaps taps;
    bool limitEdges = false;  ///< the full edge limiter, first down the columns, then along the rows
    EdgeLimits edgeLimits;
    bool postFilterOn = false;
    DetailTaps rowTaps{};
    DetailTaps columnTaps{};
};

/// The post filter at half its strength, for the columns: all taps halved, and the two central ones raised until the sum
/// is 8192.
DetailTaps HalvePostTaps(const DetailTaps& taps);

/// Whether the wide post filter can run with these taps: it works by pairs around the place between two samples.
bool ArePaired(const DetailTaps& taps);

/// Rows of wide words by number, of which the latest 16 are kept.
class WideRows {
public:
    static constexpr int32_t kept = 16;

    /// Room for rows of `width` samples; what was kept is lost.
    void Prepare(int32_t width);

    int16_t* Row(int32_t y) const { return first + (y & (kept - 1)) * stride; }

private:
    SlackRow<int16_t> memory;
    int16_t* first = nullptr;
    int32_t stride = 0;
};

/// Working memory of the scaler, kept between frames.
struct WideScratch {
    SlackRow<uint8_t> source;
    WideRows expanded;  ///< source rows of double length
    WideRows doubled;   ///< rows of the target, before their stages
    WideRows limited;
    SlackRow<int16_t> rows[3];  ///< a row of the target on its way through the stages
};

/// Doubles `source` into `target` on both axes.
///
/// target  2 · width × 2 · height samples; only these are written.
/// source  any size from 1 × 1; only its own samples are read.
/// edges   beyond all sides the outermost samples are repeated. The limiter and the post filter leave 8 samples at the
///         beginning of an axis alone and 8 to 15 at its end.
void ScaleBothTwice(const Plane& target, const PlaneView& source, const WideStages& stages, WideScratch& scratch,
                    const KernelTable& kernels);

}  // namespace clarivex
