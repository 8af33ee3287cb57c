// Rows of pictures that lie in somebody else's buffer, without spare columns.
#pragma once

#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

/// A decoded picture and the end of the memory that may be read with it.
struct SourceImage {
    ImagePlanes planes;
    const uint8_t* end = nullptr;
};

/// `count` samples of row y. Right of the plane's width stands what follows in memory; from `end` on the row's last sample.
///
/// copy  room for `count` samples, used when the row cannot be read in place.
const uint8_t* ReadableRow(const Plane& plane, int32_t y, int32_t count, const uint8_t* end, uint8_t* copy);

}  // namespace clarivex
