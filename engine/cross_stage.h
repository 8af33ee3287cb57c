// Sharpening across the direction of a scaler pass, for the axis that is not scaled.
#pragma once

#include <cstdint>

#include "algorithms/sharpen_params.h"
#include "runtime/planes.h"

namespace clarivex {

/// Integer gains on the second difference: a base gain, an extra gain and the dead zone of its product.
struct CrossGains {
    int16_t base = 0;      ///< crossA
    int16_t extra = 0;     ///< crossB
    int16_t deadZone = 0;  ///< crossK, 0 … 16383
};

CrossGains DeriveCrossGains(const SharpenParams& params);

/// Filters across the rows of a plane, strip after strip, in place. It runs one row behind the strip, because a row
/// needs the row below it, and carries one unfiltered row from strip to strip.
class CrossStage {
public:
    /// lineBuffer  working row with room for the plane's width rounded up to a multiple of 8; must outlive the stage.
    CrossStage(const CrossGains& crossGains, uint8_t* lineBuffer) : gains(crossGains), line(lineBuffer) {}

    /// Filters what can be filtered once rows y … y + 15 are final; to be called with y = 0, 16, 32 … in order.
    ///
    /// edges   above the plane row 0 is repeated, below it the last row. Columns are rounded up to a multiple of 8
    ///         within the stride.
    /// Rows go in pairs: row 14 of a plane of more than 16 rows stays as it is, and so does a last row without partner.
    void Run(const Plane& plane, int32_t y);

private:
    void FilterRow(uint8_t* row, const uint8_t* below, int32_t columns, int32_t rounding);

    CrossGains gains;
    uint8_t* line;
};

}  // namespace clarivex
