// Planes for tests of filters that work in place: with spare columns, spare rows and guards, all of them compared.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "runtime/planes.h"

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

    void Fill(uint8_t sample) { memory.assign(memory.size(), sample); }

    /// Guards, spare columns and spare rows are compared as well.
    bool operator==(const GuardedPlane& other) const { return memory == other.memory; }

    int32_t width;
    int32_t height;
    int32_t stride;

private:
    static constexpr int32_t guardLength = 256;
    std::vector<uint8_t> memory;
};

/// The first place where two planes of one shape differ, for failure texts.
inline std::string FirstDifference(const GuardedPlane& actual, const GuardedPlane& expected) {
    for (int32_t y = 0; y <= expected.height; ++y)
        for (int32_t x = 0; x < expected.stride; ++x)
            if (actual.At(x, y) != expected.At(x, y))
                return "column " + std::to_string(x) + ", row " + std::to_string(y) + ": " +
                       std::to_string(actual.At(x, y)) + " instead of " + std::to_string(expected.At(x, y));
    return actual == expected ? "equal" : "outside the plane's rows";
}

}  // namespace clarivex
