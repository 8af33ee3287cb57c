// Digests of samples, by the polynomial of zlib and PNG.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

/// Continues the digest `crc` (0 at the start) over `count` bytes.
inline uint32_t Crc32(const uint8_t* bytes, size_t count, uint32_t crc = 0) {
    crc = ~crc;
    for (size_t i = 0; i < count; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320U & (0U - (crc & 1)));
    }
    return ~crc;
}

/// Digest of the visible samples, row by row.
inline uint32_t Crc32(const Plane& plane, uint32_t crc = 0) {
    for (int32_t y = 0; y < plane.height; ++y) crc = Crc32(plane.Row(y), static_cast<size_t>(plane.width), crc);
    return crc;
}

}  // namespace clarivex
