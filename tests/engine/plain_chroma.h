// The chroma scalers once more, sample by sample from their weights.
#pragma once

#include <algorithm>
#include <functional>

#include "runtime/planes.h"

namespace clarivex {

/// Samples 0 … count − 1 of the row or column that is enlarged.
using ChromaLine = std::function<int32_t(int32_t)>;

inline int32_t ThreeHalvesAlong(const ChromaLine& line, int32_t count, int32_t out, bool chromaOdd) {
    const int32_t k = out / 3 * 2;  // first of the pair that three come of
    const int32_t before = line(std::max(k - 1, 0)), first = line(k), second = line(std::min(k + 1, count - 1));
    const bool last = k + 2 >= count;  // centred, whatever the others are
    if (last && out % 3 == 2) return second;
    if (chromaOdd && !last) return out % 3 == 2 ? second : (171 * first + 85 * (out % 3 == 0 ? before : second)) >> 8;
    if (out % 3 == 0) return (213 * first + 43 * before) >> 8;
    return out % 3 == 1 ? (first + second) >> 1 : (213 * second + 43 * line(k + 2)) >> 8;
}

inline int32_t ThreeHalvesDown(const ChromaLine& line, int32_t count, int32_t out, bool) {
    const int32_t k = out / 3 * 2, pairs = count / 2;
    if (out >= 3 * pairs) return line(count - 1);
    if (out == 3 * pairs - 1) return line(2 * pairs - 1);
    if (out % 3 == 0) return (11 * line(std::max(k - 1, 0)) + 53 * line(k)) >> 6;
    return out % 3 == 1 ? (line(k) + line(k + 1)) >> 1 : (53 * line(k + 1) + 11 * line(k + 2)) >> 6;
}

inline int32_t Doubled(const ChromaLine& line, int32_t count, int32_t out, bool chromaOdd) {
    const int32_t i = out / 2, other = out % 2 == 0 ? std::max(i - 1, 0) : std::min(i + 1, count - 1);
    const int32_t weight = !chromaOdd ? 64 : out % 2 == 0 ? 96 : 32;
    return ((256 - weight) * line(i) + weight * line(other)) >> 8;
}

/// One of these rules with its direction.
struct PlainChroma {
    int32_t (*sample)(const ChromaLine& line, int32_t count, int32_t out, bool chromaOdd);
    bool down;

    /// Samples made of `count`.
    int32_t Length(int32_t count) const {
        if (sample == Doubled) return 2 * count;
        return down ? (count == 1 ? 0 : (3 * count + 1) / 2) : (count + 1) / 2 * 3;
    }

    /// Writes what the target has room for.
    void Run(const Plane& target, const PlaneView& source, bool chromaOdd) const {
        const int32_t made = Length(down ? source.height : source.width);
        const int32_t columns = std::min(down ? source.width : made, target.stride);
        for (int32_t y = 0; y < (down ? std::min(made, target.height) : source.height); ++y)
            for (int32_t x = 0; x < columns; ++x) {
                const ChromaLine line = [&](int32_t i) { return down ? source.Row(i)[x] : source.Row(y)[i]; };
                target.Row(y)[x] =
                    static_cast<uint8_t>(sample(line, down ? source.height : source.width, down ? y : x, chromaOdd));
            }
    }
};

constexpr PlainChroma enlargedRows{ThreeHalvesAlong, false}, enlargedColumns{ThreeHalvesDown, true};
constexpr PlainChroma doubledRows{Doubled, false}, doubledColumns{Doubled, true};

}  // namespace clarivex
