#include "algorithms/readable_row.h"

#include <cstring>

namespace clarivex {

SourcePlane SourcePlane::RightOf(int32_t columns) const {
    SourcePlane right = *this;
    right.plane = clarivex::RightOf(plane, columns);
    if (writable.data != nullptr) right.writable = clarivex::RightOf(writable, columns);
    return right;
}

const uint8_t* ReadableRow(const SourcePlane& source, int32_t y, int32_t count, uint8_t* copy) {
    const uint8_t* row = source.plane.Row(y);
    const ptrdiff_t readable = source.end - row;
    if (readable >= count) return row;
    std::memcpy(copy, row, static_cast<size_t>(readable));
    std::memset(copy + readable, row[source.plane.width - 1], static_cast<size_t>(count - readable));
    return copy;
}

}  // namespace clarivex
