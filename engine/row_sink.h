// Where a picture's luma goes row by row, while each row is in the cache.
#pragma once

#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

/// Samples behind a row's width that whoever takes it may write.
constexpr int32_t sinkRoom = 16;

/// Takes the rows of a picture's luma as they are finished, from the upper one on.
class RowSink {
public:
    /// row  the picture's width and sinkRoom; its samples may be changed, and are gone when the call is over
    virtual void TakeLuma(int32_t y, uint8_t* row) = 0;

protected:
    ~RowSink() = default;
};

/// All rows of a plane that has room behind its width.
inline void GiveRows(const Plane& luma, RowSink& sink) {
    for (int32_t y = 0; y < luma.height; ++y) sink.TakeLuma(y, luma.Row(y));
}

}  // namespace clarivex
