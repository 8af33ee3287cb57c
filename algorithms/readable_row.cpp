#include "algorithms/readable_row.h"

#include <cstring>

namespace clarivex {

const uint8_t* ReadableRow(const Plane& plane, int32_t y, int32_t count, const uint8_t* end, uint8_t* copy) {
    const uint8_t* row = plane.Row(y);
    const ptrdiff_t readable = end - row;
    if (readable >= count) return row;
    std::memcpy(copy, row, static_cast<size_t>(readable));
    std::memset(copy + readable, row[plane.width - 1], static_cast<size_t>(count - readable));
    return copy;
}

}  // namespace clarivex
