#include "tests/simd/plain_kernels.h"

#include <algorithm>
#include <array>
#include <vector>

namespace clarivex {
namespace {

int32_t Wrap16(int32_t v) { return static_cast<int16_t>(v); }

int32_t Wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint64_t>(v)); }

int32_t Saturate16(int32_t v) { return std::clamp(v, -0x8000, 0x7FFF); }

uint8_t Saturate8(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

int32_t MulHigh(int32_t a, int32_t b) { return (a * b) >> 16; }

/// Towards zero by the threshold, zero within it.
int32_t Core(int32_t x, int32_t threshold) { return x - std::clamp(x, -threshold, threshold); }

void LimitEdges(const uint8_t* in, uint8_t* out, int32_t width, const EdgeLimits& limits) {
    const int32_t end = 8 + 8 * std::max((width - 16) >> 3, 0);
    for (int32_t x = 0; x < width; ++x) {
        out[x] = in[x];
        if (x < 8 || x >= end) continue;
        const int32_t c = in[x];
        const int32_t measure = 2 * c - in[x - 1] - in[x + 1];
        const int32_t cored = Core(Wrap16(limits.gain * measure), limits.deadZone);
        const int32_t sharpened = Saturate8(Wrap16(c + (Wrap16(cored + 16) >> 5)));
        const int32_t a = c - in[x - 3];
        const int32_t b = c - in[x + 3];
        const auto rise = [&](int32_t outer, int32_t slope) {
            const int32_t edge = Saturate16(Wrap16(outer * limits.outerWeight) - 64 * (a + b));
            return Wrap16(MulHigh(edge, Wrap16(slope)) + limits.offset);
        };
        const int32_t most = std::max({+in[x - 1], c, +in[x + 1]});
        const int32_t least = std::min({+in[x - 1], c, +in[x + 1]});
        const int32_t upper = Saturate8(std::max(most + rise(std::max(a, b), -limits.slope), most) + limits.margin);
        const int32_t lower = Saturate8(std::min(least - rise(std::min(a, b), limits.slope), least) - limits.margin);
        out[x] = static_cast<uint8_t>(std::min(std::max(sharpened, lower), upper));
    }
}

template <int32_t before, int32_t length>
void FirRow(const uint8_t* in, uint8_t* out, const FirSpan& span, const int16_t* taps, int16_t*) {
    for (int32_t x = 0; x < span.columns; ++x) {
        out[x] = in[x];
        if (x < span.first || x >= span.end) continue;
        int32_t sum = x % 2 == 0 ? 4088 : 4072;
        for (int32_t k = 0; k < length; ++k) sum += MulHigh(taps[k], PlainCentred(in[x + k - before]));
        out[x] = Saturate8(Wrap16(sum) >> 5);
    }
}

void EnlargeRow(const uint8_t* in, const int16_t* taps, uint8_t* out, const RowBand& band) {
    for (int32_t o = 0; o < band.columns; ++o) {
        const int32_t phase = o % 3;
        int32_t sum = 8160;
        for (int32_t k = 0; k < 8; ++k) {
            const int32_t x = 2 * (o / 3) + phase + k - 4;
            if (x <= band.inColumns)  // mid-grey adds nothing
                sum += MulHigh(taps[8 * phase + k], PlainCentred(in[std::clamp(x, 0, band.inColumns - 1)]));
        }
        out[o] = Saturate8(Wrap16(sum) >> 6);
    }
}

void EnlargeRows(const RowBand& band, const RowFilters& filters, uint8_t*) {
    for (int32_t y = 0; y < band.rows; ++y) {
        std::vector<uint8_t> row(static_cast<size_t>(band.columns) + 1), last(row);
        EnlargeRow(band.in[y], filters.taps, row.data(), band);
        if (filters.limits != nullptr && band.width > 16) {
            last = row;
            LimitEdges(last.data(), row.data(), band.width, *filters.limits);
        }
        if (filters.post != nullptr) {
            last = row;
            const int16_t* post = filters.post;
            const int16_t taps[7] = {post[3], post[2], post[1], post[0], post[1], post[2], post[3]};
            FirRow<3, 7>(last.data(), row.data(), filters.span, taps, nullptr);
        }
        std::copy_n(row.data(), band.columns, band.out[y]);
    }
}

/// What the row is said to be made of, one step after the other.
void TonePackedRow(const uint8_t* luma, const uint8_t* const* chroma, uint8_t* out, int32_t width,
                   const PackedTone& tone) {
    std::vector<uint8_t> blended(static_cast<size_t>(width)), toned(blended), tonedChroma(blended);
    scalarKernels.blendChromaRows(chroma, blended.data(), width / 2);
    scalarKernels.toneLuma(luma, toned.data(), width, tone.luma, tone.lumaGrain);
    scalarKernels.toneChromaNoise(blended.data(), tonedChroma.data(), width, tone.chroma, tone.chromaGrain);
    scalarKernels.interleave(toned.data(), tonedChroma.data(), out, width);
}

void FirEven(const uint8_t* in, uint8_t* out, const FirSpan& span, const int16_t* taps, int32_t rounding) {
    for (int32_t x = 0; x < span.columns; ++x) {
        out[x] = in[x];
        if (x < span.first || x >= span.end) continue;
        int32_t sum = rounding;
        for (int32_t j = 0; j < 8; ++j) sum += MulHigh(64 * (in[x - 8 + j] + in[x + 7 - j]), taps[j]);
        out[x] = Saturate8(Wrap16(sum) >> 3);
    }
}

void ExpandRow(const uint8_t* row, int16_t* words, int32_t width) {
    for (int32_t x = 0; x < width; ++x) words[x] = static_cast<int16_t>(257 * row[x] - 32768);
}

void EnlargeColumns(const int16_t* const* rows, const int16_t* taps, uint8_t* out, int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        int32_t sum = 0;
        for (int32_t k = 0; k < 8; ++k) sum = Saturate16(sum + MulHigh(taps[k], rows[k][x]));
        out[x] = Saturate8(Saturate16(sum + 8192) >> 6);
    }
}

/// The sum of one of the outputs around a sample.
int32_t DoubledSum(const uint8_t* sample, const int16_t* taps, bool odd) {
    int64_t sum = 0;
    for (int32_t k = 0; k < 8; ++k) sum += odd ? taps[7 - k] * sample[k - 3] : taps[k] * sample[k - 4];
    return Wrap32(sum);
}

void DoubleRow(const uint8_t* in, const int16_t* taps, uint8_t* out, int32_t width) {
    for (int32_t o = 0; o < 2 * width; ++o) out[o] = Saturate8((DoubledSum(in + o / 2, taps, o % 2 != 0) + 8192) >> 14);
}

constexpr int32_t wideBias = 32768;

/// A wide word out of a wide sample of any size.
int16_t WideWord(int64_t sample) { return static_cast<int16_t>(std::clamp<int64_t>(sample, 0, 65535) - wideBias); }

void DoubleRowWide(const uint8_t* in, const int16_t* taps, int16_t* out, int32_t width) {
    for (int32_t o = 0; o < 2 * width; ++o) out[o] = WideWord((DoubledSum(in + o / 2, taps, o % 2 != 0) + 128) >> 8);
}

/// Wraps where the sum of taps on words, which stand around 0, leaves 32 bits.
template <int32_t length, int32_t shift, int32_t rounding>
void WeighRows(const int16_t* const* rows, const int16_t* taps, int16_t* out, int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        int64_t sum = rounding;
        for (int32_t k = 0; k < length; ++k) sum += int64_t{taps[k]} * (rows[k][x] + wideBias);
        out[x] = WideWord((Wrap32(sum - (int64_t{wideBias} << shift)) >> shift) + wideBias);
    }
}

void LimitEdgesWide(const int16_t* const* rows, int16_t* out, int32_t width, const EdgeLimits& limits) {
    for (int32_t x = 0; x < width; ++x) {
        const int32_t c = rows[0][x];
        const auto [least, most] = std::minmax({c, +rows[1][x], +rows[2][x]});
        const int32_t measure = Saturate16(Saturate16(c - rows[1][x]) + Saturate16(c - rows[2][x]));
        const int32_t sharpened = (Core(limits.gain * measure, 64 * limits.deadZone) + 16 + 32 * c) >> 5;
        const int32_t above = Saturate16(std::max(rows[3][x], rows[4][x]) - c);
        const int32_t below = Saturate16(std::min(rows[3][x], rows[4][x]) - c);
        const auto allowance = [&](int32_t sameSide, int32_t otherSide, int32_t slope) {
            const int32_t edge =
                std::clamp(64 * sameSide + Wrap16(64 - limits.outerWeight) * otherSide, -(1 << 23), (1 << 23) - 1);
            const int64_t rise = ((int64_t{edge} * Wrap16(slope)) >> 16) + 64 * limits.offset;
            const int32_t margin = std::clamp(64 * limits.margin, INT16_MIN, INT16_MAX);
            return static_cast<int32_t>(std::min<int64_t>(std::clamp<int64_t>(rise, 0, INT16_MAX) + margin, INT16_MAX));
        };
        const int32_t upper = Saturate16(most + allowance(above, below, -limits.slope));
        const int32_t lower = Saturate16(least - allowance(below, above, limits.slope));
        out[x] = WideWord(std::min(std::max(sharpened, lower), upper) + wideBias);
    }
}

void NarrowRow(const int16_t* words, uint8_t* out, int32_t width) {
    for (int32_t x = 0; x < width; ++x) out[x] = Saturate8((words[x] + wideBias) >> 6);
}

void LightingVotes(const uint8_t* luma, const uint8_t* firstChroma, const uint8_t* secondChroma, int32_t pairs,
                   const VoteRows& votes) {
    for (int32_t i = 0; i < pairs; ++i) {
        const int32_t mean = (luma[2 * i] + luma[2 * i + 1]) >> 1;
        const int32_t d1 = firstChroma[i] - 128;
        const int32_t d2 = secondChroma[i] - 128;
        votes.level[i] = static_cast<uint8_t>(mean);
        votes.voteA[i] = Saturate8(mean + ((-320 * d1 - 160 * d2) >> 8));
        votes.voteB[i] = std::max(votes.level[i], Saturate8(mean + ((730 * d1) >> 8)));
        votes.voteC[i] = std::max(votes.level[i], Saturate8(mean + ((870 * d2) >> 8)));
    }
}

void SplitPackedRow(const uint8_t* packed, uint8_t* luma, uint8_t* u, uint8_t* v, int32_t pairs) {
    for (int32_t i = 0; i < 2 * pairs; ++i) {
        luma[i] = packed[2 * i];
        uint8_t* chroma = i % 2 == 0 ? u : v;
        if (chroma != nullptr) chroma[i / 2] = packed[2 * i + 1];
    }
}

void PaintCoverage(const uint8_t* coverage, const int16_t* colour, uint8_t* pixels, int32_t width) {
    constexpr std::array<int32_t, 4> bases{256, 16, 128, 128};
    constexpr std::array<int32_t, 4> roundings{4095, 264, 2056, 2056};
    for (int32_t x = 0; x < width; ++x) {
        const auto term = [&](size_t channel) {
            return MulHigh(64 * coverage[x], colour[channel]) + roundings[channel];
        };
        const int32_t kept = term(0);
        for (size_t channel = 0; channel < 4; ++channel) {
            uint8_t& byte = pixels[4 * x + static_cast<int32_t>(channel)];
            byte = Saturate8((((byte - bases[channel]) * kept >> 8) + term(channel)) >> 4);
        }
    }
}

void PackTileRow(const uint8_t* pixels, uint8_t* tileGroups, int32_t groups, bool oddRow) {
    constexpr std::array<int32_t, 4> chromaRoundings{32, 96, 96, 32};
    for (int32_t x = 0; x < 8 * groups; ++x) {
        const auto expanded = [&](int32_t at) { return (pixels[4 * at] * 257) >> 1; };
        uint8_t* group = tileGroups + x / 8 * 24;
        const int32_t a = expanded(x);
        const int32_t dither = (x % 2 == 0) != oddRow ? 48 : 16;
        group[x % 8] = Saturate8(pixels[4 * x + 1] + (((-2048 * a >> 16) + dither) >> 6));
        group[8 + x % 8] = Saturate8(((32640 * a >> 16) + 64 - dither) >> 6);

        const int32_t first = x & ~1;
        const int32_t channel = 2 + x % 2;  // the even byte of a pair's terms is U, the odd one V
        const int32_t average = (pixels[4 * first + channel] + pixels[4 * first + 4 + channel] + 1) >> 1;
        const int32_t mean = (expanded(first) + expanded(first + 1)) >> 1;
        const int32_t rounding = chromaRoundings[static_cast<size_t>(x % 4)];
        group[16 + x % 8] = Saturate8(average + (((-32768 * mean >> 16) + rounding) >> 7));
    }
}

}  // namespace

int32_t PlainCentred(int32_t sample) {
    const int32_t s = sample < 128 ? sample - 128 : std::min(sample - 127, 127);
    return 256 * s + (s & 255);
}

constinit const KernelTable plainKernels = [] {
    KernelTable table{};
    table.name = "plain";
    table.enlargeRows = EnlargeRows;
    table.tonePackedRow = TonePackedRow;
    table.limitEdges = LimitEdges;
    table.fir7 = FirRow<3, 7>;
    table.fir5 = FirRow<2, 5>;
    table.expandRow = ExpandRow;
    table.enlargeColumns = EnlargeColumns;
    table.lightingVotes = LightingVotes;
    table.splitPackedRow = SplitPackedRow;
    table.paintCoverage = PaintCoverage;
    table.packTileRow = PackTileRow;
    table.fir8 = FirRow<4, 8>;
    table.firEven = FirEven;
    table.doubleRow = DoubleRow;
    table.doubleRowWide = DoubleRowWide;
    table.doubleColumnsWide = WeighRows<8, 14, 8192>;
    table.limitEdgesWide = LimitEdgesWide;
    table.firWide = WeighRows<16, 13, 0>;
    table.narrowRow = NarrowRow;
    return table;
}();

}  // namespace clarivex
