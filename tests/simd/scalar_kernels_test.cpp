// The scalar kernels on values worked out by hand.
#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

#include "simd/kernel_table.h"

namespace clarivex {
namespace {

using Bytes = std::vector<uint8_t>;

/// A row of one value with slack on both sides.
template <class T>
class SlackRow {
public:
    SlackRow(int32_t count, T value) : memory(static_cast<size_t>(slackBefore + count + slackBehind), value) {}
    T* Samples() { return memory.data() + slackBefore; }

private:
    std::vector<T> memory;
};

TEST(ScalarKernels, SplitRowCentresSamples) {
    const Bytes row{0, 127, 128, 129, 254, 255};
    SlackRow<int16_t> even(3, 0), odd(3, 0);
    scalarKernels.splitRow(row.data(), even.Samples(), odd.Samples(), 6);
    EXPECT_EQ(std::vector(even.Samples(), even.Samples() + 3), (std::vector<int16_t>{-32640, 257, 32639}));
    EXPECT_EQ(std::vector(odd.Samples(), odd.Samples() + 3), (std::vector<int16_t>{-1, 514, 32639}));
}

TEST(ScalarKernels, EnlargeRowKeepsFlatRowsButFor255) {
    constexpr std::array<int16_t, 8> phase{-120, 480, -1800, 9600, 9600, -1800, 480, -120};
    ASSERT_EQ(std::accumulate(phase.begin(), phase.end(), 0), 16320);
    std::array<int16_t, 24> taps{};
    for (size_t k = 0; k < taps.size(); ++k) taps[k] = phase[k % 8];
    for (int32_t level = 0; level < 256; ++level) {
        const Bytes row(2, static_cast<uint8_t>(level));
        SlackRow<int16_t> word(1, 0), unused(1, 0);
        scalarKernels.splitRow(row.data(), word.Samples(), unused.Samples(), 2);
        SlackRow<int16_t> words(4, *word.Samples());
        SlackRow<uint8_t> out(12, 0);
        scalarKernels.enlargeRow(words.Samples(), words.Samples(), taps.data(), out.Samples(), 4);
        EXPECT_EQ(Bytes(out.Samples(), out.Samples() + 12), Bytes(12, static_cast<uint8_t>(std::min(level, 254))));
    }
}

TEST(ScalarKernels, EnlargeColumnsKeepsEveryFlatLevel) {
    constexpr std::array<int16_t, 8> taps{0, 0, 0, 16384, 0, 0, 0, 0};
    for (int32_t level = 0; level < 256; ++level) {
        SlackRow<int16_t> words(3, static_cast<int16_t>(257 * level - 32768));
        const std::array<const int16_t*, 8> rows{words.Samples(), words.Samples(), words.Samples(), words.Samples(),
                                                 words.Samples(), words.Samples(), words.Samples(), words.Samples()};
        Bytes out(3);
        scalarKernels.enlargeColumns(rows.data(), taps.data(), out.data(), 3);
        EXPECT_EQ(out, Bytes(3, static_cast<uint8_t>(level)));
    }
}

TEST(ScalarKernels, EnlargeColumnsSaturatesOnTheWay) {
    // Six times 16383 stops at 32767; two times −16384 later it is −1, and (8191 >> 6) is 127.
    constexpr std::array<int16_t, 8> taps{32767, 32767, 32767, 32767, 32767, 32767, -32768, -32768};
    SlackRow<int16_t> words(1, 32767);
    const std::array<const int16_t*, 8> rows{words.Samples(), words.Samples(), words.Samples(), words.Samples(),
                                             words.Samples(), words.Samples(), words.Samples(), words.Samples()};
    uint8_t out = 0;
    scalarKernels.enlargeColumns(rows.data(), taps.data(), &out, 1);
    EXPECT_EQ(out, 127);
}

/// A row of 24 samples with the given ones around column 12.
uint8_t LimitedCentre(const std::array<uint8_t, 7>& around, const EdgeLimits& limits) {
    SlackRow<uint8_t> in(24, around[0]), out(24, 0);
    std::copy(around.begin(), around.end(), in.Samples() + 9);
    scalarKernels.limitEdges(in.Samples(), out.Samples(), 24, limits);
    return out.Samples()[12];
}

TEST(ScalarKernels, LimitEdgesLetsOnlyRealEdgesOvershoot) {
    const EdgeLimits limits;
    // One step up: sharpened to 10, but the limit is the neighbours' range.
    EXPECT_EQ(LimitedCentre({100, 100, 100, 100, 200, 200, 200}, limits), 100);
    // A ripple of one step stays: 29 · 2 less the dead zone of 29, (29 + 16) >> 5 is 1, and the range ends at 101.
    EXPECT_EQ(LimitedCentre({100, 100, 100, 101, 100, 100, 100}, limits), 101);
    // A wide valley is sharpened to 65, but with a = b = −50 only hi(64 · 100 − 77 · 50, 800) = 31 below 100 is allowed.
    EXPECT_EQ(LimitedCentre({150, 150, 120, 100, 120, 150, 150}, limits), 69);
    EdgeLimits wide = limits;
    wide.margin = 3;
    EXPECT_EQ(LimitedCentre({150, 150, 120, 100, 120, 150, 150}, wide), 66);
    wide.margin = 255;
    EXPECT_EQ(LimitedCentre({150, 150, 120, 100, 120, 150, 150}, wide), 65);
}

TEST(ScalarKernels, LimitEdgesCopiesWhatItDoesNotCover) {
    struct Covered {
        int32_t width, end;
    };
    for (const auto& [width, end] : {Covered{0, 8}, Covered{7, 8}, Covered{23, 8}, Covered{24, 16}, Covered{31, 16},
                                     Covered{32, 24}, Covered{40, 32}}) {
        SlackRow<uint8_t> in(width, 0), out(width, 0);
        for (int32_t x = 0; x < width; ++x) in.Samples()[x] = static_cast<uint8_t>(x % 4 < 2 ? 40 : 200);
        EdgeLimits limits;
        limits.margin = 255;
        scalarKernels.limitEdges(in.Samples(), out.Samples(), width, limits);
        for (int32_t x = 0; x < width; ++x)
            EXPECT_EQ(out.Samples()[x] != in.Samples()[x], x >= 8 && x < end) << x << " of " << width;
    }
}

TEST(ScalarKernels, FirWithOneTapKeepsAllButTheTopLevelAndCopiesTheEnds) {
    constexpr std::array<int16_t, 7> taps{0, 0, 0, 8160, 0, 0, 0};
    SlackRow<uint8_t> in(260, 0);
    SlackRow<int16_t> words(260, 0);
    for (int32_t x = 0; x < 260; ++x) in.Samples()[x] = static_cast<uint8_t>(x - 4);  // 252 … 255, then 0 … 255
    Bytes expected(in.Samples(), in.Samples() + 260), out(260);
    scalarKernels.fir7(in.Samples(), out.data(), 260, 4, 259, taps.data(), words.Samples());
    EXPECT_EQ(out, expected);
    expected[259] = 254;
    scalarKernels.fir7(in.Samples(), out.data(), 260, 4, 260, taps.data(), words.Samples());
    EXPECT_EQ(out, expected);
}

TEST(ScalarKernels, EnlargeChromaRowWeighs213And43) {
    SlackRow<uint8_t> in(2, 0);
    constexpr std::array<uint8_t, 4> samples{0, 100, 200, 50};
    std::copy(samples.begin(), samples.end(), in.Samples() - 1);
    constexpr std::array<int16_t, 3> weights{43 * 128, 16384, 43 * 128};
    Bytes out(3);
    scalarKernels.enlargeChromaRow(in.Samples(), weights.data(), out.data(), 3);
    EXPECT_EQ(out, (Bytes{83, 150, 174}));  // 21300 / 256, 300 / 2, (42600 + 2150) / 256
}

TEST(ScalarKernels, EnlargeChromaColumnsWeighs53And11) {
    constexpr std::array<uint8_t, 4> column{10, 100, 201, 0};
    std::array<const uint8_t*, 4> rows{};
    for (size_t i = 0; i < 4; ++i) rows[i] = &column[i];
    std::array<uint8_t, 3> out{};
    const std::array<uint8_t*, 3> outs{&out[0], &out[1], &out[2]};
    scalarKernels.enlargeChromaColumns(rows.data(), outs.data(), 1);
    EXPECT_EQ(out, (std::array<uint8_t, 3>{84, 150, 166}));  // 5410 / 64, 301 / 2, 10653 / 64
}

TEST(ScalarKernels, SharpenColumnsRoundsDownFromFourSixteenths) {
    const auto sharpen = [](uint8_t above, uint8_t row, uint8_t below, int16_t gain) {
        uint8_t out = 0;
        scalarKernels.sharpenColumns(&above, &row, &below, &out, 1, gain);
        return static_cast<int32_t>(out);
    };
    EXPECT_EQ(sharpen(90, 100, 90, 16), 120);
    EXPECT_EQ(sharpen(90, 100, 90, -16), 80);  // (−320 + 4) >> 4 is −20
    EXPECT_EQ(sharpen(99, 100, 100, 11), 100);
    EXPECT_EQ(sharpen(99, 100, 100, 12), 101);
    EXPECT_EQ(sharpen(0, 200, 0, 50), 255);
    EXPECT_EQ(sharpen(0, 200, 0, 100), 0);  // 40004 does not fit 16 bits
    EXPECT_EQ(sharpen(255, 100, 255, 100), 0);
}

TEST(ScalarKernels, LightingVotesFollowColour) {
    const Bytes luma{100, 103, 100, 103}, first{138, 100}, second{108, 200};
    Bytes level(2), a(2), b(2), c(2);
    scalarKernels.lightingVotes(luma.data(), first.data(), second.data(), 2, level.data(), a.data(), b.data(),
                                c.data());
    EXPECT_EQ(level, (Bytes{101, 101}));
    EXPECT_EQ(a, (Bytes{101, 91}));   // −3200 + 3200, and (8960 − 11520) / 256 = −10
    EXPECT_EQ(b, (Bytes{129, 101}));  // 7300 / 256 = 28; never below the level
    EXPECT_EQ(c, (Bytes{101, 255}));  // 62640 / 256 = 244, limited
}

TEST(ScalarKernels, SplitPackedRowSeparatesPlanes) {
    const Bytes packed{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    Bytes luma(6), u(3), v(3);
    scalarKernels.splitPackedRow(packed.data(), luma.data(), u.data(), v.data(), 3);
    EXPECT_EQ(luma, (Bytes{1, 3, 5, 7, 9, 11}));
    EXPECT_EQ(u, (Bytes{2, 6, 10}));
    EXPECT_EQ(v, (Bytes{4, 8, 12}));
}

/// Rows of one constant for a tone kernel.
struct ToneRows {
    std::array<int16_t, patternLength> pattern, gain, dither;
    std::array<int16_t, 256 + 64> noise{};

    ToneRows() {
        pattern.fill(8);
        gain.fill(8192);
        dither.fill(2);
    }
};

TEST(ScalarKernels, NeutralToneKeepsSamplesAndNoiseCountsSixteenths) {
    ToneRows rows;
    rows.noise[250] = 16;
    rows.noise[1] = rows.noise[257] = -32;
    Bytes in(256), out(256);
    std::iota(in.begin(), in.end(), static_cast<uint8_t>(0));
    scalarKernels.toneChroma(in.data(), out.data(), 256, rows.gain.data(), rows.pattern.data());
    EXPECT_EQ(out, in);
    Bytes expected = in;
    expected[2] = 3;  // entry 248 + 2
    expected[9] = 7;  // entry 248 + 9, beyond the row's end
    scalarKernels.toneLuma(in.data(), out.data(), 256, LumaCurve{}, rows.pattern.data(), rows.noise.data(), 248);
    EXPECT_EQ(out, expected);
    scalarKernels.toneChromaNoise(in.data(), out.data(), 256, rows.gain.data(), rows.pattern.data(), rows.noise.data(),
                                  248);
    EXPECT_EQ(out, expected);
}

TEST(ScalarKernels, ToneCurveIsACubic) {
    // q = 12800: hi(q, c3 = 16384) = 3200, twice that and c2 = 1000 is 7400; hi(7400, q) = 1445, four times that and
    // c1 = 4096 is 9876; hi(9876, q) = 1928 sixteenths, and 8 more is 121.
    const ToneRows rows;
    const uint8_t in = 100;
    uint8_t out = 0;
    scalarKernels.toneLuma(&in, &out, 1, {16384, 1000, 4096}, rows.pattern.data(), rows.noise.data(), 0);
    EXPECT_EQ(out, 121);
}

TEST(ScalarKernels, OverlayKeepsFadesAndAdds) {
    ToneRows rows;
    rows.pattern.fill(0);
    const Bytes in{100, 100, 100, 250};
    SlackRow<int16_t> keep(4, 32767);
    keep.Samples()[1] = 0;
    keep.Samples()[2] = 16383;
    const Bytes term{5, 60, 0, 200}, expected{105, 60, 50, 255};  // 799 + 2 eighths, 2, 399 + 2, and limited
    Bytes out(4);
    scalarKernels.toneLumaOverlay(in.data(), out.data(), 4, LumaCurve{}, rows.pattern.data(), rows.noise.data(), 0,
                                  keep.Samples(), term.data(), rows.dither.data());
    EXPECT_EQ(out, expected);
    scalarKernels.toneChromaOverlay(in.data(), out.data(), 4, rows.gain.data(), rows.pattern.data(), rows.noise.data(),
                                    0, keep.Samples(), term.data(), rows.dither.data());
    EXPECT_EQ(out, expected);
}

TEST(ScalarKernels, BlendChromaRowsRoundsUpTwice) {
    constexpr std::array<uint8_t, 4> samples{100, 0, 101, 0};
    std::array<const uint8_t*, 4> rows{};
    for (size_t i = 0; i < 4; ++i) rows[i] = &samples[i];
    Bytes out(2);
    scalarKernels.blendChromaRows(rows.data(), out.data(), 1);
    EXPECT_EQ(out, (Bytes{75, 76}));
}

}  // namespace
}  // namespace clarivex
