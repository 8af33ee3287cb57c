// Where a picture's luma goes a few rows at a time, while they are in the cache.
#pragma once

#include <cstdint>

#include "algorithms/slack_row.h"
#include "runtime/planes.h"

namespace clarivex {

/// Samples behind a row's width that whoever takes it may write.
constexpr int32_t sinkRoom = 16;

/// Rows that whoever makes them keeps for a sink: few enough to stay in the cache.
constexpr int32_t sinkRows = 12;

/// Takes the rows of a picture's luma as they are finished, from the upper one on.
class RowSink {
public:
    /// rows  row y of the picture and those behind it, each of the picture's width and sinkRoom; their samples may be
    ///       changed, and are gone when the call is over
    virtual void TakeLuma(int32_t y, const Plane& rows) = 0;

protected:
    ~RowSink() = default;
};

/// Rows of working memory with room for a sink. An odd number of cache lines apart, so that they don't push each other out.
inline Plane RowsIn(SlackRow<uint8_t>& memory, int32_t width, int32_t rows) {
    const int32_t stride = ((width + sinkRoom + 63) & ~63) | 64;
    return {memory.Prepare(stride * rows), width, rows, stride};
}

/// `count` rows of a plane from row y on.
inline Plane RowsOf(const Plane& plane, int32_t y, int32_t count) {
    return {plane.Row(y), plane.width, count, plane.stride};
}

}  // namespace clarivex
