// Planes for tests of filters that work in place: with spare columns, spare rows and guards, all of them compared.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

#include "runtime/planes.h"
#include "tests/support/crc32.h"

namespace clarivex {

/// A plane of random samples, spare columns and spare rows included, between two guards. Copies are independent.
class GuardedPlane {
public:
    GuardedPlane(int32_t columns, int32_t rows, int32_t rowStep, int32_t spareRows, uint32_t seed)
        : width(columns),
          height(rows),
          stride(rowStep),
          memory(static_cast<size_t>(2 * guardLength + stride * (height + spareRows))) {
        std::mt19937 random(seed);
        for (uint8_t& sample : memory) sample = static_cast<uint8_t>(random());
    }

    Plane View() { return {memory.data() + guardLength, width, height, stride}; }

    /// Any sample of the memory by its place in the plane.
    uint8_t& At(int32_t x, int32_t y) { return memory[static_cast<size_t>(guardLength + y * stride + x)]; }
    const uint8_t& At(int32_t x, int32_t y) const { return memory[static_cast<size_t>(guardLength + y * stride + x)]; }

    /// Guards, spare columns and spare rows are compared as well.
    bool operator==(const GuardedPlane& other) const { return memory == other.memory; }

    int32_t width;
    int32_t height;
    int32_t stride;

private:
    static constexpr int32_t guardLength = 256;
    std::vector<uint8_t> memory;
};

/// Digest of planes of every width up to their stride, spare columns and a spare row included, after a filter that works
/// in place. Nothing else may have changed.
inline uint32_t DigestOfFiltered(void (*filter)(const Plane& plane), std::initializer_list<int32_t> heights,
                                 int32_t mostWidth = 64) {
    constexpr int32_t stride = 64;
    uint32_t digest = 0;
    for (int32_t width = 1; width <= mostWidth; ++width)
        for (const int32_t height : heights) {
            GuardedPlane plane(width, height, stride, 1, static_cast<uint32_t>(width * 31 + height));
            GuardedPlane around = plane;
            filter(plane.View());
            const size_t bytes = static_cast<size_t>(stride * (height + 1));
            digest = Crc32(&plane.At(0, 0), bytes, digest);
            std::copy_n(&plane.At(0, 0), bytes, &around.At(0, 0));
            EXPECT_TRUE(plane == around) << width << " x " << height << ": guards";
        }
    return digest;
}

}  // namespace clarivex
