// Pictures that lie in somebody else's buffer, without spare columns, and how their rows are read.
#pragma once

#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

/// A plane that is read.
///
/// end       end of the memory that may be read with it
/// writable  the same samples where they are our own and a stage may work in place on them; otherwise without samples
struct SourcePlane {
    PlaneView plane;
    const uint8_t* end = nullptr;
    Plane writable;

    /// What is right of the first `columns` columns.
    SourcePlane RightOf(int32_t columns) const;
};

/// A decoded picture, or one of our own, that is read. Members as in SourcePlane.
struct SourceImage {
    PictureView planes;
    const uint8_t* end = nullptr;
    Plane writableLuma;

    SourcePlane Luma() const { return {planes.luma, end, writableLuma}; }
};

/// `count` samples of row y. Right of the plane's width stands what follows in memory; from `end` on the row's last sample.
///
/// copy  room for `count` samples, used when the row cannot be read in place.
const uint8_t* ReadableRow(const SourcePlane& source, int32_t y, int32_t count, uint8_t* copy);

}  // namespace clarivex
