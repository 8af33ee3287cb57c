#include "engine/sleeping/chroma_doubling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "tests/support/guarded_rows.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

/// Samples 0 … count − 1 of the row or column that is enlarged.
using Line = std::function<int32_t(int32_t)>;

int32_t ThreeHalvesAlong(const Line& line, int32_t count, int32_t out, bool chromaOdd) {
    const int32_t k = out / 3 * 2;  // first of the pair that three come of
    const int32_t before = line(std::max(k - 1, 0)), first = line(k), second = line(std::min(k + 1, count - 1));
    const bool last = k + 2 >= count;  // centred, whatever the others are
    if (last && out % 3 == 2) return second;
    if (chromaOdd && !last) return out % 3 == 2 ? second : (171 * first + 85 * (out % 3 == 0 ? before : second)) >> 8;
    if (out % 3 == 0) return (213 * first + 43 * before) >> 8;
    return out % 3 == 1 ? (first + second) >> 1 : (213 * second + 43 * line(k + 2)) >> 8;
}

int32_t ThreeHalvesDown(const Line& line, int32_t count, int32_t out, bool) {
    const int32_t k = out / 3 * 2, pairs = count / 2;
    if (out >= 3 * pairs) return line(count - 1);
    if (out == 3 * pairs - 1) return line(2 * pairs - 1);
    if (out % 3 == 0) return (11 * line(std::max(k - 1, 0)) + 53 * line(k)) >> 6;
    return out % 3 == 1 ? (line(k) + line(k + 1)) >> 1 : (53 * line(k + 1) + 11 * line(k + 2)) >> 6;
}

int32_t Doubled(const Line& line, int32_t count, int32_t out, bool chromaOdd) {
    const int32_t i = out / 2, other = out % 2 == 0 ? std::max(i - 1, 0) : std::min(i + 1, count - 1);
    const int32_t weight = !chromaOdd ? 64 : out % 2 == 0 ? 96 : 32;
    return ((256 - weight) * line(i) + weight * line(other)) >> 8;
}

struct Scaler {
    const char* name;
    bool down;
    int32_t (*expected)(const Line& line, int32_t count, int32_t out, bool chromaOdd);
    int32_t (*length)(int32_t count);
    void (*run)(const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels);
};

SlackRow<uint8_t> scratch;

// clang-format off
constexpr Scaler scalers[] = {
    {"3/2 along the rows", false, ThreeHalvesAlong, [](int32_t count) { return (count + 1) / 2 * 3; },
     [](const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels) {
         ScaleChromaRows(target, source.planes.third, chromaOdd, scratch, kernels); }},
    {"3/2 down the columns", true, ThreeHalvesDown, [](int32_t count) { return count == 1 ? 0 : (3 * count + 1) / 2; },
     [](const Plane& target, const SourceImage& source, bool, const KernelTable& kernels) {
         ScaleChromaColumns(target, source.planes.third, source.end, scratch, kernels); }},
    {"twice along the rows", false, Doubled, [](int32_t count) { return 2 * count; },
     [](const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels) {
         DoubleChromaRows(target, source.planes.third, chromaOdd, scratch, kernels); }},
    {"twice down the columns", true, Doubled, [](int32_t count) { return 2 * count; },
     [](const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels) {
         DoubleChromaColumns(target, source.planes.third, chromaOdd, kernels); }},
};
// clang-format on

/// The target is smaller, as large or larger than what the scaler makes; what it makes no samples for stays.
void ExpectPlainSamples(const Scaler& scaler, int32_t along, int32_t across, bool chromaOdd, int32_t more,
                        const KernelTable& kernels) {
    const int32_t width = scaler.down ? across : along, height = scaler.down ? along : across;
    const DecodedPicture picture(2 * width, 2 * height, 2 * width, Texture::hard, 5);
    const PlaneView source = picture.Source().planes.third;
    const int32_t made = scaler.length(along), room = std::max(made + more, 2);
    const int32_t columns = scaler.down ? width + 2 - more : room, rows = scaler.down ? room : height + 1;
    std::vector<uint8_t> memory(static_cast<size_t>(columns * (rows + 1)), 0xA5);
    scaler.run({memory.data(), columns, rows, columns}, picture.Source(), chromaOdd, kernels);
    for (int32_t y = 0; y <= rows; ++y)
        for (int32_t x = 0; x < columns; ++x) {
            const int32_t out = scaler.down ? y : x, beside = scaler.down ? x : y;
            if (scaler.down && beside >= across && beside < (across + 3) / 4 * 4) continue;  // spare
            const auto line = [&](int32_t i) -> int32_t { return scaler.down ? source.Row(i)[x] : source.Row(y)[i]; };
            const bool inside = out < std::min(made, room) && beside < across;
            ASSERT_EQ(inside ? scaler.expected(line, along, out, chromaOdd) : 0xA5,
                      memory[static_cast<size_t>(y * columns + x)])
                << scaler.name << ", " << kernels.name << ", " << width << " x " << height << " into " << columns
                << " x " << rows << ", odd " << chromaOdd << ": " << x << ", " << y;
        }
}

TEST(ChromaScalers, InterpolateByTheirWeightsInsideAnyTarget) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        std::mt19937 random(1);
        for (const Scaler& scaler : scalers)
            for (int32_t along = 1; along <= 70; ++along)
                for (const bool chromaOdd : {false, true}) {
                    const int32_t across = 1 + UpTo(random, scaler.down ? 69 : 3), more = 2 * UpTo(random, 2) - 2;
                    ASSERT_NO_FATAL_FAILURE(ExpectPlainSamples(scaler, along, across, chromaOdd, more, kernels));
                }
    });
}

}  // namespace
}  // namespace clarivex
