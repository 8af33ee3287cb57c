// Every operation of the lanes at every width against plain integers, every kernel at every width against the scalar form,
// the scalar form against plain integers, checks that these comparisons see a fault, and the choice of a table.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <tuple>

#include "tests/simd/lane_checks.h"
#include "tests/simd/plain_kernels.h"
#include "tests/simd/runs_here.h"
#include "tests/support/guarded_rows.h"

namespace clarivex {
namespace {

class EveryWidthOfLanes : public testing::TestWithParam<const LaneChecks*> {};

TEST_P(EveryWidthOfLanes, MeansTheSame) {
    const LaneChecks& lanes = *GetParam();
    if (!RunsHere(*lanes.kernels)) GTEST_SKIP() << lanes.kernels->name << " cannot run on this processor";
    std::mt19937 random(1);
    for (int32_t round = 0; round < 500 && !HasFailure(); ++round)
        for (const Fill fill : allFills) {
            LaneSamples samples;
            for (auto& row : samples.words)
                FillSamples(row, LaneSamples::mostLanes, fill, INT16_MIN, INT16_MAX, random);
            for (auto& row : samples.bytes) FillSamples(row, 2 * LaneSamples::mostLanes, fill, 0, 255, random);
            lanes.run(samples, [](const char* operation, int32_t element, int32_t actual, int32_t expected) {
                ADD_FAILURE() << operation << ": element " << element << " is " << actual << ", not " << expected;
            });
        }
}

INSTANTIATE_TEST_SUITE_P(Kernels, EveryWidthOfLanes,
                         testing::Values(&scalarLaneChecks, &sse2LaneChecks, &avx2LaneChecks, &avx512LaneChecks,
                                         &avx512VbmiLaneChecks),
                         [](const auto& test) {
                             return std::string(test.param->kernels->name) + test.param->kernels->variant;
                         });

// ---- What makes the arguments of a kernel's call: functions of the call's rows and of its width ----

constexpr Room slackToRead{slackBefore, slackBehind};
constexpr Room slackToWrite{0, slackBehind};

int32_t Width(CallRows&, int32_t width) { return width; }

/// Rows of `per` samples a column.
auto Bytes(int32_t per = 1) {
    return [=](CallRows& rows, int32_t width) { return rows.Bytes(per * width); };
}
auto SlackBytes(Room reach = {}) {
    return [=](CallRows& rows, int32_t width) { return rows.RoomyBytes(width, slackToRead, reach); };
}
auto Out(int32_t per = 1, Room room = {}) {
    return [=](CallRows& rows, int32_t width) { return rows.Out(per * width, room); };
}
auto SlackOut(int32_t per = 1) { return Out(per, slackToWrite); }
auto SlackOutWords(int32_t per = 1) {
    return [=](CallRows& rows, int32_t width) { return rows.OutWords(per * width, slackToWrite); };
}
int16_t* Scratch(CallRows& rows, int32_t width) { return rows.Scratch(width, slackToWrite); }
uint8_t* NoRow(CallRows&, int32_t) { return nullptr; }

/// Rows that a kernel takes by an array of pointers.
template <class T, size_t count>
struct RowArray {
    std::array<T*, count> rows;
    operator T* const*() const { return rows.data(); }
};

template <size_t count, class Maker>
auto Several(Maker maker) {
    return [=](CallRows& rows, int32_t width) {
        RowArray<std::remove_pointer_t<decltype(maker(rows, width))>, count> array;
        for (auto*& row : array.rows) row = maker(rows, width);
        return array;
    };
}

const int16_t* WideWords(CallRows& rows, int32_t width) {
    return rows.RoomyWords(width, slackToRead, {}, INT16_MIN, INT16_MAX);
}

template <class T>
auto OneOf(const char* name, std::initializer_list<int32_t> values) {
    return [name, list = std::vector<int32_t>(values)](CallRows& rows, int32_t) {
        return static_cast<T>(rows.Note(name, list[static_cast<size_t>(rows.random() % list.size())]));
    };
}

constexpr int32_t mostThatCannotSaturate = 49000;  // of the sum of eight taps' magnitudes

/// Taps of the kinds that filters have and of those that break sums; with zeros some of the outermost are 0.
auto Taps(int32_t count, bool zeros = false) {
    return [=](CallRows& rows, int32_t) {
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
        if (!zeros) return taps;
        const int32_t cleared = rows.Pick("outer taps 0", {0, 1, 2, 3, 4});
        std::fill_n(taps, cleared, static_cast<int16_t>(0));
        if (count == 16) std::fill_n(taps + count - cleared, cleared, static_cast<int16_t>(0));
        return taps;
    };
}

/// Limits as they are in use, and at the ends of their ranges; the dead zone is a multiple of the gain or not.
EdgeLimits Limits(CallRows& rows, int32_t) {
    EdgeLimits limits;
    if (rows.Pick("limits as in use", {0, 0, 1}) == 1) return limits;
    const int32_t gain = rows.Pick("gain", {0, 1, 2, 29, 30, 31, 32, 33, 126, 127});
    const int32_t multiple = gain * rows.Pick("multiple", {0, 1, 2, 100, 258});
    const int32_t zone = rows.Pick("dead zone", {-1, -1, 0, 1, 28, 30, 255, 510, 32766, 32767});
    limits.gain = static_cast<int16_t>(gain);
    limits.deadZone = static_cast<int16_t>(zone >= 0 ? zone : rows.Note("zone", std::min(multiple, 32767)));
    limits.outerWeight =
        static_cast<int16_t>(rows.Pick("outer weight", {64, 77, 63, 1, 127, 128, 0, -1, INT16_MIN, INT16_MAX}));
    limits.slope = static_cast<int16_t>(rows.Pick("slope", {800, 0, 1, 1024, 1040, -800, INT16_MIN, INT16_MAX}));
    if (rows.Pick("offset and margin", {0, 1}) == 0) return limits;
    limits.offset = static_cast<int16_t>(rows.Pick("offset", {0, 1, -1, 20, INT16_MIN, INT16_MAX}));
    limits.margin = static_cast<int16_t>(rows.Pick("margin", {0, 1, 5, 128, 254, 255, -1, -40, -255, -300, INT16_MIN}));
    return limits;
}

auto Span(int32_t margin) {
    return [=](CallRows& rows, int32_t width) -> FirSpan {
        const int32_t first = rows.Pick("first", {margin, margin, margin + 1, 16, margin + width});
        return {width, first, rows.Pick("end", {width - margin, width - 1, width, width / 2, 0})};
    };
}

const int16_t* ChromaWeights(CallRows& rows, int32_t) {
    int16_t* weights = rows.Words(3);
    const bool inUse = rows.Pick("weights in use", {0, 1}) == 1;
    for (int32_t i = 0; i < 3; ++i)
        weights[i] = static_cast<int16_t>(inUse ? (i == 1 ? 128 : 43) : rows.Pick("weight", {0, 1, 85, 128, 254, 255}));
    return weights;
}

VoteRows Votes(CallRows& rows, int32_t width) {
    return {rows.Out(width), rows.Out(width), rows.Out(width), rows.Out(width)};
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

LumaTone Luma(CallRows& rows, int32_t) {
    LumaTone tone{{}, Pattern(rows, "pattern to")};
    if (rows.Pick("plain curve", {0, 1}) == 1) return tone;
    tone.curve = {.c3 = static_cast<int16_t>(rows.Pick("c3", {0, 1, -1, 5000, INT16_MIN, INT16_MAX})),
                  .c2 = static_cast<int16_t>(rows.Pick("c2", {0, 1, -1, -700, INT16_MIN, INT16_MAX})),
                  .c1 = static_cast<int16_t>(rows.Pick("c1", {8192, 0, 1, -1, INT16_MIN, INT16_MAX}))};
    return tone;
}

ChromaTone Chroma(CallRows& rows, int32_t) {
    const int16_t* gains = Pattern(rows, "gain to");
    return {gains, Pattern(rows, "pattern to")};
}

GrainRow Grain(CallRows& rows, int32_t) {
    int16_t* words = RangedWords(rows, "noise to", noisePeriod + noiseRepeated);
    std::copy_n(words, noiseRepeated, words + noisePeriod);
    return {words, rows.Note("noise start", 8 * UpTo(rows.random, 31))};
}

OverlayRow Overlay(CallRows& rows, int32_t width) {
    const int16_t* keep = rows.RoomyWords(width, slackToRead, {}, 0, 32767);
    const uint8_t* terms = rows.Bytes(width);
    return {keep, terms, Pattern(rows, "dither to")};
}

/// Three of four colours are of those that reach furthest.
const int16_t* Colour(CallRows& rows, int32_t) {
    int16_t* colour = rows.Words(4);
    for (int32_t i = 0; i < 4; ++i)
        colour[i] = static_cast<int16_t>(64 * rows.Pick("colour", {-255, 255, UpTo(rows.random, 510) - 255, 0}));
    return colour;
}

/// Pixels that are painted over in place.
uint8_t* Pixels(CallRows& rows, int32_t width) {
    const uint8_t* below = rows.Bytes(4 * width);
    return std::copy_n(below, 4 * width, rows.Out(4 * width)) - 4 * width;
}

// ---- One call a kernel ----

using CallKernel = std::function<void(const KernelTable& table, CallRows& rows, int32_t width)>;

/// A kernel without a plain form is still to leave alone what is not its own, and not to hang on it.
struct KernelCheck {
    const char* name;
    CallKernel call;
    bool hasPlain = true;
};

/// Arguments are made in their order.
template <class Kernel, class... Makers>
KernelCheck Check(const char* name, Kernel KernelTable::*kernel, Makers... makers) {
    const auto call = [=](const KernelTable& table, CallRows& rows, int32_t width) {
        const std::tuple arguments{makers(rows, width)...};
        std::apply(table.*kernel, arguments);
    };
    return {name, call, plainKernels.*kernel != nullptr};
}

/// Rows as expandRow makes them; in one of three calls each row is whatever drives its tap's product furthest.
void CallEnlargeColumns(const KernelTable& table, CallRows& rows, int32_t width) {
    const int16_t* taps = Taps(8)(rows, width);
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

/// Rows in whole groups and not; read up to a multiple of 8 samples and written up to one of 4.
void CallEnlargeRows(const KernelTable& table, CallRows& rows, int32_t width) {
    const int32_t count = rows.Pick("rows", {1, 1, 2, 3, 17, 64, 65});
    const int32_t enlarged = 3 * width / 2;
    std::vector<const uint8_t*> in;
    std::vector<uint8_t*> out;
    const RowBand band{nullptr, nullptr, count, std::max((width + 7) & ~7, 8), enlarged, (enlarged + 3) & ~3};
    for (int32_t y = 0; y < count; ++y) {
        in.push_back(rows.Bytes(band.inColumns));
        out.push_back(rows.Out(band.columns));
    }
    const int16_t* taps = Taps(24)(rows, width);
    const EdgeLimits limits = Limits(rows, width);
    const int16_t* post = Taps(4)(rows, width);
    const FirSpan span{band.columns, rows.Pick("first", {3, 4, 16, 36}),
                       rows.Pick("end", {enlarged - 3, enlarged - 4, enlarged / 2, 0})};
    auto* work = reinterpret_cast<uint8_t*>(rows.Scratch(rowWorkBytes / 2, {}));
    table.enlargeRows({in.data(), out.data(), count, band.inColumns, band.width, band.columns},
                      {taps, rows.Pick("limiter", {0, 1, 1}) == 0 ? nullptr : &limits,
                       rows.Pick("filter", {0, 1, 1}) == 0 ? nullptr : post, span},
                      work);
}

void CallToneLuma(const KernelTable& table, CallRows& rows, int32_t width) {
    LumaTone tone = Luma(rows, width);
    uint8_t curveTable[lumaTableBytes];
    if (table.tabulateLuma != nullptr) table.tabulateLuma(tone.curve, curveTable);
    tone.table = curveTable;
    const uint8_t* in = rows.Bytes(width);
    const GrainRow grain = Grain(rows, width);
    table.toneLuma(in, rows.Out(width), width, tone, grain);
}

void CallTonePackedRow(const KernelTable& table, CallRows& rows, int32_t width) {
    width &= ~1;
    const uint8_t* luma = rows.Bytes(width);
    const auto chroma = Several<4>(Bytes())(rows, width / 2);
    const PackedTone tone{Luma(rows, width), Chroma(rows, width), Grain(rows, width), Grain(rows, width)};
    table.tonePackedRow(luma, chroma, rows.Out(2 * width), width, tone);
}

std::ostream& operator<<(std::ostream& out, const KernelCheck& check) { return out << check.name; }

using Table = KernelTable;
const KernelCheck kernelChecks[] = {
    {"enlargeRows", CallEnlargeRows},
    Check("limitEdges", &Table::limitEdges, SlackBytes(), SlackOut(), Width, Limits),
    Check("fir7", &Table::fir7, SlackBytes({0, 4}), Out(), Span(4), Taps(7), Scratch),
    Check("fir5", &Table::fir5, SlackBytes({0, 4}), Out(), Span(4), Taps(5), Scratch),
    Check("expandRow", &Table::expandRow, Bytes(), SlackOutWords(), Width),
    {"enlargeColumns", CallEnlargeColumns},
    Check(
        "enlargeChromaRow", &Table::enlargeChromaRow,
        [](CallRows& rows, int32_t count) {
            return rows.RoomyBytes((count + 2) / 3 * 2, slackToRead, {1, 1});
        },
        ChromaWeights, Out(), Width),
    Check("enlargeChromaColumns", &Table::enlargeChromaColumns, Several<4>(Bytes()), Several<3>(Out()), Width),
    Check("sharpenColumns", &Table::sharpenColumns, Bytes(), Bytes(), Bytes(), SlackOut(), Width,
          OneOf<int16_t>("gain", {0, 1, -1, 5, 64, -64, INT16_MIN, INT16_MAX})),
    Check("lightingVotes", &Table::lightingVotes, Bytes(2), Bytes(), Bytes(), Width, Votes),
    Check("splitPackedRow", &Table::splitPackedRow, Bytes(4), Out(2), Out(), Out(), Width),
    Check("splitPackedLuma", &Table::splitPackedRow, Bytes(4), Out(2), NoRow, NoRow, Width),
    {"toneLuma", CallToneLuma, false},
    Check("toneLumaOverlay", &Table::toneLumaOverlay, Bytes(), Out(), Width, Luma, Grain, Overlay),
    Check("toneChroma", &Table::toneChroma, Bytes(), Out(), Width, Chroma),
    Check("toneChromaNoise", &Table::toneChromaNoise, Bytes(), Out(), Width, Chroma, Grain),
    Check("toneChromaOverlay", &Table::toneChromaOverlay, Bytes(), Out(), Width, Chroma, Grain, Overlay),
    Check("blendChromaRows", &Table::blendChromaRows, Several<4>(Bytes()), Out(2), Width),
    {"tonePackedRow", CallTonePackedRow},
    Check("interleave", &Table::interleave, Bytes(), Bytes(), Out(2), Width),
    Check("deinterleave", &Table::deinterleave, Bytes(2), Out(), Out(), Width),
    Check("paintCoverage", &Table::paintCoverage, Bytes(), Colour, Pixels, Width),
    Check("packTileRow", &Table::packTileRow, Bytes(32), Out(24), Width, OneOf<bool>("odd row", {0, 1})),
    Check("fir8", &Table::fir8, SlackBytes({0, 4}), Out(), Span(4), Taps(8), Scratch),
    Check("firEven", &Table::firEven, SlackBytes({0, 7}), Out(), Span(8), Taps(8, true),
          OneOf<int32_t>("rounding", {6, 7})),
    Check("pullRow", &Table::pullRow, Bytes(), Bytes(), OneOf<int16_t>("weight", {0, 1, 4096, 8192, 12288, 32767}),
          Out(), Width),
    Check("doubleRow", &Table::doubleRow, SlackBytes({4, 4}), Taps(8), SlackOut(2), Width),
    Check("doubleRowWide", &Table::doubleRowWide, SlackBytes({4, 4}), Taps(8), SlackOutWords(2), Width),
    Check("doubleColumnsWide", &Table::doubleColumnsWide, Several<8>(WideWords), Taps(8), SlackOutWords(), Width),
    Check("limitEdgesWide", &Table::limitEdgesWide, Several<5>(WideWords), SlackOutWords(), Width, Limits),
    Check("firWide", &Table::firWide, Several<16>(WideWords), Taps(16, true), SlackOutWords(), Width),
    Check("narrowRow", &Table::narrowRow, WideWords, Out(), Width),
};

// ---- Two tables compared ----

/// Calls a kernel of both tables with the same rows, of all fills, every width of 0 … 200 and some long ones, aligned and
/// not, with extreme and random parameters. What is in the slack differs between the two.
testing::AssertionResult Agree(const KernelTable& reference, const KernelTable& tested, const CallKernel& call) {
    constexpr int32_t everyWidthTo = 200, rounds = 3;
    std::vector<int32_t> widths{960, 1021, 1920};
    for (int32_t width = 0; width <= everyWidthTo; ++width) widths.insert(widths.end(), rounds, width);
    uint32_t seed = 0;
    for (const Fill fill : allFills)
        for (const int32_t width : widths) {
            CallRows expected(++seed, fill, 0x3C), actual(seed, fill, 0xC3);
            call(reference, expected, width);
            call(tested, actual, width);
            if (const std::string fault = actual.FaultAgainst(expected); !fault.empty())
                return testing::AssertionFailure()
                       << tested.name << " against " << reference.name << ": fill " << static_cast<int>(fill)
                       << ", width " << width << ", seed " << seed << actual.Notes() << fault;
        }
    return testing::AssertionSuccess();
}

class EveryWidth : public testing::TestWithParam<std::tuple<const KernelTable*, KernelCheck>> {};

TEST_P(EveryWidth, GivesTheBytesOfItsReference) {
    const auto& [table, check] = GetParam();
    if (!RunsHere(*table)) GTEST_SKIP() << table->name << " cannot run on this processor";
    const bool plain = table == &scalarKernels && check.hasPlain;
    EXPECT_TRUE(Agree(plain ? plainKernels : scalarKernels, *table, check.call));
}

INSTANTIATE_TEST_SUITE_P(Kernels, EveryWidth,
                         testing::Combine(testing::ValuesIn(AllKernels().begin(), AllKernels().end()),
                                          testing::ValuesIn(kernelChecks)),
                         [](const auto& test) {
                             return std::string(std::get<0>(test.param)->name) + std::get<0>(test.param)->variant +
                                    "_" + std::get<1>(test.param).name;
                         });

const CallKernel& CallOf(const char* name) {
    return std::find_if(std::begin(kernelChecks), std::end(kernelChecks),
                        [&](const KernelCheck& check) { return std::string_view(check.name) == name; })
        ->call;
}

TEST(EveryWidthHarness, SeesFaults) {
    KernelTable faulty = plainKernels;
    faulty.narrowRow = [](const int16_t* words, uint8_t* out, int32_t width) {
        plainKernels.narrowRow(words, out, width);
        out[width] ^= 1;
    };
    faulty.expandRow = [](const uint8_t* row, int16_t* words, int32_t width) {
        plainKernels.expandRow(row, words, width);
        words[width + slackBehind] = 0;
    };
    faulty.limitEdges = [](const uint8_t* in, uint8_t* out, int32_t width, const EdgeLimits& limits) {
        plainKernels.limitEdges(in, out, width, limits);
        out[0] = in[-1];
    };
    for (const char* name : {"narrowRow", "expandRow", "limitEdges"})
        EXPECT_FALSE(Agree(plainKernels, faulty, CallOf(name))) << name;
}

TEST(SelectKernels, TakesTheWidestThatMayRun) {
    EXPECT_EQ(&SelectKernels({}), &scalarKernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true}), &sse2Kernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true, .avx2 = true}), &avx2Kernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true, .avx2 = true, .avx512 = true}), &avx512Kernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true, .avx2 = true, .avx512 = true, .avx512vbmi = true}), &avx512VbmiKernels);
}

}  // namespace
}  // namespace clarivex
