// What the tests of both output stages share: parameters, noise, an overlay on some rows, and the arithmetic of one sample.
#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "pipeline/output_constants.h"
#include "pipeline/output_inputs.h"
#include "tests/support/test_images.h"

namespace clarivex {

/// Parameters of a frame and its noise.
struct OutputCase {
    const char* name;
    LightingCorrection params;
    float noiseLevel;
};

inline const std::vector<OutputCase>& OutputCases() {
    const LightingCorrection neutral;
    const LightingCorrection usual{-0.0022267557F, 1.1149026F, -8.6044168F, 8.1035978e-06F,
                                   1.0016646F,     -0.213083F, 1.0016646F,  -0.213083F};
    const LightingCorrection uneven{0, 1.25F, -20, 0, 1.75F, -90, 0.5F, 70};
    const LightingCorrection folding{0.03F, -3.5F, 900, -2e-4F, 3.9F, -1500, -3, 1400};
    static const std::vector<OutputCase> cases{{"neutral", neutral, 0},
                                               {"neutral with unseen noise", neutral, 0.00005F},
                                               {"neutral with noise", neutral, 0.75F},
                                               {"usual", usual, 0.75F},
                                               {"uneven chroma", uneven, 3},
                                               {"folding over", folding, 9}};
    return cases;
}

/// An overlay whose rows y with (y · 5 / 3) % 3 == 0 hold random groups, or none at all.
inline void MakeOverlay(OverlayTiles& tiles, int32_t width, int32_t height, bool marked, uint32_t seed) {
    tiles.Resize(width, height);
    tiles.Clear();
    tiles.MarkAllRowsEmpty();
    if (!marked) return;
    std::mt19937 random(seed);
    for (int32_t y = 0; y < height; ++y) {
        if (y * 5 / 3 % 3 != 0) continue;
        tiles.MarkRows(y, y + 1);
        for (int32_t i = 0; i < tiles.Stride(); ++i) {
            const auto bits = static_cast<uint32_t>(random());
            tiles.Group(0, y)[i] = (bits & 0x300) == 0 ? 255 : static_cast<uint8_t>(bits);
        }
    }
}

/// Samples of one overlay row by column.
struct OverlaySample {
    int32_t lumaTerm, keep, chromaTerm;
};

inline OverlaySample OverlayAt(const uint8_t* row, int32_t x) {
    const uint8_t* group = row + x / 8 * 24;
    const int32_t keep = group[8 + x % 8];
    return {group[x % 8], (keep << 8 | keep) >> 1, group[16 + x % 8]};
}

/// Luma and chroma noise bytes of a column as the frame sees them.
struct NoiseSample {
    int32_t luma, chroma;
};

inline NoiseSample NoiseAt(const NoiseTable& noise, int32_t x, int32_t y) {
    const int32_t column = ((noise.offsetX & ~7) + x) & 255;
    const uint8_t* group = noise.bytes.Row((noise.offsetY + y) & 255) + column / 8 * 16;
    return {group[column % 8], group[8 + column % 8]};
}

inline int32_t High(int32_t a, int32_t b) { return (static_cast<int16_t>(a) * static_cast<int16_t>(b)) >> 16; }

inline int32_t Wrap(int32_t value) { return static_cast<int16_t>(value); }

inline uint8_t Limit(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

inline int32_t CurveAt(const OutputConstants& c, int32_t sample) {
    const int32_t q = sample << 7;
    int32_t t = High(q, c.c3) << 1;
    t = Wrap(High(t + c.c2, q) << 2);
    return High(t + c.c1, q);
}

/// Fixture of both stages: what its inputs refer to.
class OutputStageTest : public testing::Test {
protected:
    OutputStageInputs Inputs(const OutputCase& test, int32_t width, int32_t height, bool overlay,
                             const KernelTable& kernels) {
        noise.Build(test.noiseLevel);
        noise.Advance();
        MakeOverlay(tiles, width, height, overlay, 7);
        return {test.params, tiles, noise, kernels, scratch};
    }

    /// Runs write(data, end) and writePlainly(data, end) on memory that ends with the picture and guards behind it.
    template <class Write, class WritePlainly>
    static testing::AssertionResult GiveTheSame(size_t bytes, int32_t stride, Write write, WritePlainly writePlainly) {
        constexpr size_t guard = 100;
        std::vector<uint8_t> actual(bytes + guard, 0xA5), expected(bytes + guard, 0xA5);
        write(actual.data(), actual.data() + bytes);
        writePlainly(expected.data(), expected.data() + bytes);
        if (actual == expected) return testing::AssertionSuccess();
        const auto differs = std::mismatch(actual.begin(), actual.end(), expected.begin()).first - actual.begin();
        return testing::AssertionFailure() << "row " << differs / stride << ", byte " << differs % stride;
    }

    NoiseTable noise;
    OverlayTiles tiles;
    OutputScratch scratch;
    LightingCorrection neutral;
};

/// A sum in sixteenths under the overlay.
inline uint8_t Blend(int32_t sum, int32_t keep, int32_t dither, int32_t term) {
    return Limit(Limit(Wrap(High(sum, keep) + dither) >> 3) + term);
}

}  // namespace clarivex
