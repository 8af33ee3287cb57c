#include "tests/simd/kernel_checks.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "tests/support/guarded_rows.h"

namespace clarivex {
namespace {

constexpr Room slackToRead{slackBefore, slackBehind};
constexpr Room slackToWrite{0, slackBehind};

using CallKernel = void (*)(const KernelTable& table, CallRows& rows, int32_t width);

/// Calls the kernel of both tables with the same rows. What is in the slack differs between the two.
testing::AssertionResult AgreeOn(const Comparison& tables, Fill fill, int32_t width, uint32_t seed, CallKernel call) {
    CallRows expected(seed, fill, 0x3C);
    CallRows actual(seed, fill, 0xC3);
    call(*tables.reference, expected, width);
    call(*tables.tested, actual, width);
    const std::string fault = actual.FaultAgainst(expected);
    if (fault.empty()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << tables << ": fill " << static_cast<int>(fill) << ", width " << width
                                       << ", seed " << seed << actual.Notes() << ": " << fault.substr(2);
}

template <CallKernel call>
testing::AssertionResult Agree(const Comparison& tables) {
    constexpr int32_t everyWidthTo = 200;
    constexpr int32_t rounds = 3;
    std::vector<int32_t> widths{960, 1021, 1920};
    for (int32_t width = 0; width <= everyWidthTo; ++width) widths.push_back(width);
    uint32_t seed = 1;
    for (const Fill fill : allFills)
        for (const int32_t width : widths)
            for (int32_t round = 0; round < rounds; ++round)
                if (auto result = AgreeOn(tables, fill, width, seed++, call); !result) return result;
    return testing::AssertionSuccess();
}

constexpr int32_t mostThatCannotSaturate = 49000;  // of the sum of eight taps' magnitudes

/// Taps of the kinds that filters have and of those that break sums.
int16_t* Taps(CallRows& rows, int32_t count) {
    int16_t* taps = rows.Words(count);
    const int32_t kind = rows.Pick("taps of kind", {0, 1, 2, 3, 4, 5, 6});
    const int32_t shared = mostThatCannotSaturate / std::min(count, 8);
    for (int32_t k = 0; k < count; ++k) {
        const int32_t random = UpTo(rows.random, 65535) - 32768;
        const int32_t sign = random < 0 ? -1 : 1;
        const std::array<int32_t, 7> value{taps[k], random,        random / 8,  k % 8 == 4 ? 16320 : 0,
                                           shared,  sign * shared, shared + 125};
        taps[k] = static_cast<int16_t>(std::min(value[static_cast<size_t>(kind)], 32767));
    }
    return taps;
}

/// Words as splitRow makes them; two on either side of the row count as well.
const int16_t* CentredWords(CallRows& rows, int32_t count) {
    constexpr Room reach{2, 2};
    int16_t* words = rows.RoomyWords(count, slackToRead, reach, -128, 127);
    for (int32_t i = -reach.before; i < count + reach.behind; ++i)
        words[i] = static_cast<int16_t>(256 * words[i] + (words[i] & 255));
    return words;
}

void CallSplitRow(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* row = rows.Bytes(2 * width);
    int16_t* even = rows.OutWords(width, slackToWrite);
    int16_t* odd = rows.OutWords(width, slackToWrite);
    table.splitRow(row, even, odd, 2 * width);
    table.expandRow(row, rows.OutWords(width, slackToWrite), width);
}

void CallEnlargeRow(const KernelTable& table, CallRows& rows, int32_t width) {
    const int16_t* even = CentredWords(rows, width);
    const int16_t* odd = CentredWords(rows, width);
    const int16_t* taps = Taps(rows, 24);
    table.enlargeRow(even, odd, taps, rows.Out(3 * width, slackToWrite), width);
}

/// Limits as they are in use, and at the ends of their ranges; the dead zone is a multiple of the gain or not.
EdgeLimits PickLimits(CallRows& rows) {
    EdgeLimits limits;
    if (rows.Pick("limits as in use", {0, 0, 1}) == 1) return limits;
    const int32_t gain = rows.Pick("gain", {0, 1, 2, 29, 30, 31, 32, 33, 126, 127});
    const int32_t multiple = gain * rows.Pick("multiple", {0, 1, 2, 100, 258});
    const int32_t zone = rows.Pick("dead zone", {-1, -1, 0, 1, 28, 30, 255, 510, 32766, 32767});
    limits.gain = static_cast<int16_t>(gain);
    limits.deadZone = static_cast<int16_t>(zone >= 0 ? zone : rows.Note("zone", std::min(multiple, 32767)));
    limits.outerWeight =
        static_cast<int16_t>(rows.Pick("outer weight", {64, 77, 1, 127, 128, 0, -1, INT16_MIN, INT16_MAX}));
    limits.slope = static_cast<int16_t>(rows.Pick("slope", {800, 0, 1, -800, INT16_MIN, INT16_MAX}));
    if (rows.Pick("offset and margin", {0, 1}) == 0) return limits;
    limits.offset = static_cast<int16_t>(rows.Pick("offset", {0, 1, -1, 20, INT16_MIN, INT16_MAX}));
    limits.margin = static_cast<int16_t>(rows.Pick("margin", {0, 1, 5, 128, 254, 255, -1, -40, -255, -300, INT16_MIN}));
    return limits;
}

void CallLimitEdges(const KernelTable& table, CallRows& rows, int32_t width) {
    const EdgeLimits limits = PickLimits(rows);
    const uint8_t* in = rows.RoomyBytes(width, slackToRead);
    table.limitEdges(in, rows.Out(width, slackToWrite), width, limits);
}

/// The samples that taps reach behind the row count.
template <KernelTable::FirRow KernelTable::*fir, int32_t length>
void CallFir(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* in = rows.RoomyBytes(width, slackToRead, {0, 4});
    const int16_t* taps = Taps(rows, length);
    int16_t* words = rows.Scratch(width, slackToWrite);
    const int32_t first = rows.Pick("first", {4, 4, 5, 7, 16, 4 + width});
    const int32_t end = rows.Pick("end", {width - 4, width - 1, width, width / 2, 0});
    (table.*fir)(in, rows.Out(width), {width, first, end}, taps, words);
}

/// Taps of which some of the outermost are 0.
const int16_t* TapsWithZeros(CallRows& rows, int32_t count) {
    int16_t* taps = Taps(rows, count);
    const int32_t zeros = rows.Pick("outer taps 0", {0, 1, 2, 3, 4});
    for (int32_t k = 0; k < zeros; ++k) taps[k] = 0;
    if (count == 16) std::fill_n(taps + count - zeros, zeros, static_cast<int16_t>(0));
    return taps;
}

void CallFirEven(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* in = rows.RoomyBytes(width, slackToRead, {0, 7});
    const int16_t* taps = TapsWithZeros(rows, 8);
    const int32_t first = rows.Pick("first", {8, 8, 9, 16, 8 + width});
    const int32_t end = rows.Pick("end", {width - 8, width - 1, width, width / 2, 0});
    table.firEven(in, rows.Out(width), {width, first, end}, taps, rows.Pick("rounding", {6, 7}));
}

/// Rows as expandRow makes them; in one of three calls each row is whatever drives its tap's product furthest.
void CallEnlargeColumns(const KernelTable& table, CallRows& rows, int32_t width) {
    const int16_t* taps = Taps(rows, 8);
    const int32_t drive = rows.Pick("driven to", {0, 1, -1});
    std::array<const int16_t*, 8> words{};
    for (size_t k = 0; k < 8; ++k) {
        int16_t* row = rows.RoomyWords(width, slackToRead, {}, 0, 255);
        for (int32_t x = 0; x < width; ++x) {
            const int32_t driven = (taps[k] < 0) == (drive < 0) ? 255 : 0;
            row[x] = static_cast<int16_t>(257 * (drive == 0 ? row[x] : driven) - 32768);
        }
        words[k] = row;
    }
    table.enlargeColumns(words.data(), taps, rows.Out(width), width);
}

void CallDoubleRow(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* in = rows.RoomyBytes(width, slackToRead, {4, 4});
    const int16_t* taps = Taps(rows, 8);
    table.doubleRow(in, taps, rows.Out(2 * width, slackToWrite), width);
    table.doubleRowWide(in, taps, rows.OutWords(2 * width, slackToWrite), width);
}

template <int32_t count>
std::array<const int16_t*, count> WideRows(CallRows& rows, int32_t width) {
    std::array<const int16_t*, count> words{};
    for (const int16_t*& row : words) row = rows.RoomyWords(width, slackToRead, {}, INT16_MIN, INT16_MAX);
    return words;
}

void CallWeighWideRows(const KernelTable& table, CallRows& rows, int32_t width) {
    const auto words = WideRows<16>(rows, width);
    table.doubleColumnsWide(words.data(), Taps(rows, 8), rows.OutWords(width, slackToWrite), width);
    table.firWide(words.data(), TapsWithZeros(rows, 16), rows.OutWords(width, slackToWrite), width);
    table.narrowRow(words[0], rows.Out(width), width);
}

void CallLimitEdgesWide(const KernelTable& table, CallRows& rows, int32_t width) {
    const EdgeLimits limits = PickLimits(rows);
    const auto words = WideRows<5>(rows, width);
    table.limitEdgesWide(words.data(), rows.OutWords(width, slackToWrite), width, limits);
}

void CallEnlargeChromaRow(const KernelTable& table, CallRows& rows, int32_t count) {
    const uint8_t* in = rows.RoomyBytes((count + 2) / 3 * 2, slackToRead, {1, 1});
    const auto quarters = static_cast<int16_t>(43 * 128);
    std::array<int16_t, 3> weights{quarters, 16384, quarters};
    if (rows.Pick("weights in use", {0, 1}) == 0)
        for (int16_t& weight : weights)
            weight = static_cast<int16_t>(rows.Pick("weight", {0, 1, 85 * 128, 16384, 32766, 32767}));
    table.enlargeChromaRow(in, weights.data(), rows.Out(count), count);
}

void CallEnlargeChromaColumns(const KernelTable& table, CallRows& rows, int32_t width) {
    std::array<const uint8_t*, 4> in{};
    for (const uint8_t*& row : in) row = rows.Bytes(width);
    std::array<uint8_t*, 3> outs{};
    for (uint8_t*& row : outs) row = rows.Out(width);
    table.enlargeChromaColumns(in.data(), outs.data(), width);
}

void CallPullRow(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* row = rows.Bytes(width);
    const uint8_t* towards = rows.Bytes(width);
    const int32_t weight = rows.Pick("weight", {0, 1, 4096, 8192, 12288, 32767});
    table.pullRow(row, towards, static_cast<int16_t>(weight), rows.Out(width), width);
}

void CallSharpenColumns(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* above = rows.Bytes(width);
    const uint8_t* row = rows.Bytes(width);
    const uint8_t* below = rows.Bytes(width);
    const int32_t gain = rows.Pick("gain", {0, 1, -1, 5, 64, -64, INT16_MIN, INT16_MAX});
    table.sharpenColumns(above, row, below, rows.Out(width, slackToWrite), width, static_cast<int16_t>(gain));
}

void CallLightingVotes(const KernelTable& table, CallRows& rows, int32_t pairs) {
    const uint8_t* luma = rows.Bytes(2 * pairs);
    const uint8_t* first = rows.Bytes(pairs);
    const uint8_t* second = rows.Bytes(pairs);
    std::array<uint8_t*, 4> outs{};
    for (uint8_t*& row : outs) row = rows.Out(pairs);
    table.lightingVotes(luma, first, second, pairs, {outs[0], outs[1], outs[2], outs[3]});
}

void CallSplitPackedRow(const KernelTable& table, CallRows& rows, int32_t pairs) {
    const uint8_t* packed = rows.Bytes(4 * pairs);
    const bool chroma = rows.Pick("chroma", {0, 1}) == 1;
    uint8_t* luma = rows.Out(2 * pairs);
    uint8_t* u = chroma ? rows.Out(pairs) : nullptr;
    uint8_t* v = chroma ? rows.Out(pairs) : nullptr;
    table.splitPackedRow(packed, luma, u, v, pairs);
}

LumaCurve PickCurve(CallRows& rows) {
    LumaCurve curve;
    if (rows.Pick("plain curve", {0, 1}) == 1) return curve;
    curve.c3 = static_cast<int16_t>(rows.Pick("c3", {0, 1, -1, 5000, INT16_MIN, INT16_MAX}));
    curve.c2 = static_cast<int16_t>(rows.Pick("c2", {0, 1, -1, -700, INT16_MIN, INT16_MAX}));
    curve.c1 = static_cast<int16_t>(rows.Pick("c1", {8192, 0, 1, -1, INT16_MIN, INT16_MAX}));
    return curve;
}

/// Words of either sign that stay within a picked range.
int16_t* RangedWords(CallRows& rows, const char* name, int32_t count) {
    const int32_t range = rows.Pick(name, {16, 600, 16384, 32767});
    return rows.Words(count, -range, range);
}

/// The same, repeating by the period of column patterns.
const int16_t* Pattern(CallRows& rows, const char* name) {
    int16_t* words = RangedWords(rows, name, patternLength);
    for (int32_t i = patternPeriod; i < patternLength; ++i) words[i] = words[i - patternPeriod];
    return words;
}

GrainRow PickGrain(CallRows& rows) {
    int16_t* words = RangedWords(rows, "noise to", noisePeriod + noiseRepeated);
    std::copy_n(words, noiseRepeated, words + noisePeriod);
    return {words, rows.Note("noise start", 8 * UpTo(rows.random, 31))};
}

OverlayRow PickOverlay(CallRows& rows, int32_t width) {
    const int16_t* keep = rows.RoomyWords(width, slackToRead, {}, 0, 32767);
    const uint8_t* terms = rows.Bytes(width);
    return {keep, terms, Pattern(rows, "dither to")};
}

template <bool withOverlay>
void CallToneLuma(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* in = rows.Bytes(width);
    const LumaCurve curve = PickCurve(rows);
    const LumaTone tone{curve, Pattern(rows, "pattern to")};
    const GrainRow grain = PickGrain(rows);
    if (withOverlay)
        table.toneLumaOverlay(in, rows.Out(width), width, tone, grain, PickOverlay(rows, width));
    else
        table.toneLuma(in, rows.Out(width), width, tone, grain);
}

template <bool withNoise, bool withOverlay>
void CallToneChroma(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* in = rows.Bytes(width);
    const int16_t* gains = Pattern(rows, "gain to");
    const ChromaTone tone{gains, Pattern(rows, "pattern to")};
    uint8_t* out = rows.Out(width);
    if (!withNoise) return table.toneChroma(in, out, width, tone);
    const GrainRow grain = PickGrain(rows);
    if (withOverlay)
        table.toneChromaOverlay(in, out, width, tone, grain, PickOverlay(rows, width));
    else
        table.toneChromaNoise(in, out, width, tone, grain);
}

void CallInterleave(const KernelTable& table, CallRows& rows, int32_t width) {
    std::array<const uint8_t*, 4> in{};
    for (const uint8_t*& row : in) row = rows.Bytes(width);
    table.interleave(in[0], in[1], rows.Out(2 * width), width);
    table.blendChromaRows(in.data(), rows.Out(2 * width), width);
}

/// Pixels are painted over in place; three of four colours are of those that reach furthest.
void CallPaintCoverage(const KernelTable& table, CallRows& rows, int32_t width) {
    const uint8_t* coverage = rows.Bytes(width);
    const uint8_t* below = rows.Bytes(4 * width);
    uint8_t* pixels = rows.Out(4 * width);
    std::copy_n(below, 4 * width, pixels);
    std::array<int16_t, 4> colour{};
    for (int16_t& term : colour)
        term = static_cast<int16_t>(64 * rows.Pick("colour", {-255, 255, UpTo(rows.random, 510) - 255, 0}));
    table.paintCoverage(coverage, colour.data(), pixels, width);
}

void CallPackTileRow(const KernelTable& table, CallRows& rows, int32_t groups) {
    const uint8_t* pixels = rows.Bytes(32 * groups);
    const bool oddRow = rows.Pick("odd row", {0, 1}) == 1;
    table.packTileRow(pixels, rows.Out(24 * groups), groups, oddRow);
}

constexpr std::array<KernelCheck, 25> kernelChecks{{
    {"splitAndExpandRow", Agree<CallSplitRow>},
    {"enlargeRow", Agree<CallEnlargeRow>},
    {"limitEdges", Agree<CallLimitEdges>},
    {"fir7", Agree<CallFir<&KernelTable::fir7, 7>>},
    {"fir5", Agree<CallFir<&KernelTable::fir5, 5>>},
    {"fir8", Agree<CallFir<&KernelTable::fir8, 8>>},
    {"firEven", Agree<CallFirEven>},
    {"enlargeColumns", Agree<CallEnlargeColumns>},
    {"doubleRows", Agree<CallDoubleRow>},
    {"wideRows", Agree<CallWeighWideRows>},
    {"limitEdgesWide", Agree<CallLimitEdgesWide>},
    {"enlargeChromaRow", Agree<CallEnlargeChromaRow>},
    {"enlargeChromaColumns", Agree<CallEnlargeChromaColumns>},
    {"pullRow", Agree<CallPullRow>},
    {"sharpenColumns", Agree<CallSharpenColumns>},
    {"lightingVotes", Agree<CallLightingVotes>},
    {"splitPackedRow", Agree<CallSplitPackedRow>},
    {"toneLuma", Agree<CallToneLuma<false>>},
    {"toneLumaOverlay", Agree<CallToneLuma<true>>},
    {"toneChroma", Agree<CallToneChroma<false, false>>},
    {"toneChromaNoise", Agree<CallToneChroma<true, false>>},
    {"toneChromaOverlay", Agree<CallToneChroma<true, true>>},
    {"interleaveAndBlend", Agree<CallInterleave>},
    {"paintCoverage", Agree<CallPaintCoverage>},
    {"packTileRow", Agree<CallPackTileRow>},
}};

}  // namespace

std::ostream& operator<<(std::ostream& out, const Comparison& tables) {
    return out << tables.tested->name << " against " << tables.reference->name;
}

std::ostream& operator<<(std::ostream& out, const KernelCheck& check) { return out << check.name; }

std::span<const KernelCheck> AllKernelChecks() { return kernelChecks; }

const KernelCheck& KernelCheckNamed(const char* name) {
    return *std::find_if(kernelChecks.begin(), kernelChecks.end(),
                         [&](const KernelCheck& check) { return std::string_view(check.name) == name; });
}

}  // namespace clarivex
