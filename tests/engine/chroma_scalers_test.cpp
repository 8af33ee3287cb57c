#include "engine/sleeping/chroma_doubling.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/engine/plain_chroma.h"
#include "tests/support/guarded_rows.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

SlackRow<uint8_t> scratch;

struct Scaler {
    PlainChroma plain;
    void (*run)(const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels);
};

// clang-format off
constexpr Scaler scalers[] = {
    {enlargedRows, [](const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels) {
         ScaleChromaRows(target, source.planes.third, chromaOdd, scratch, kernels); }},
    {enlargedColumns, [](const Plane& target, const SourceImage& source, bool, const KernelTable& kernels) {
         ScaleChromaColumns(target, source.planes.third, source.end, scratch, kernels); }},
    {doubledRows, [](const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels) {
         DoubleChromaRows(target, source.planes.third, chromaOdd, scratch, kernels); }},
    {doubledColumns, [](const Plane& target, const SourceImage& source, bool chromaOdd, const KernelTable& kernels) {
         DoubleChromaColumns(target, source.planes.third, chromaOdd, kernels); }},
};
// clang-format on

/// Into targets that are smaller, as large or larger than what is made; what no sample is made for stays.
TEST(ChromaScalers, InterpolateByTheirWeightsInsideAnyTarget) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        std::mt19937 random(1);
        for (const auto& [plain, run] : scalers)
            for (int32_t along = 1; along <= 70; ++along)
                for (const bool chromaOdd : {false, true}) {
                    const int32_t across = 1 + UpTo(random, plain.down ? 69 : 3), more = 2 * UpTo(random, 2) - 2;
                    const int32_t width = plain.down ? across : along, height = plain.down ? along : across;
                    const DecodedPicture picture(2 * width, 2 * height, 2 * width, Texture::hard, 5);
                    const int32_t room = std::max(plain.Length(along) + more, 2);
                    const Plane target{nullptr, plain.down ? width + 2 - more : room, plain.down ? room : height + 1,
                                       plain.down ? width + 2 - more : room};
                    std::vector<uint8_t> actual(static_cast<size_t>(target.stride * (target.height + 1)), 0xA5);
                    std::vector<uint8_t> expected = actual;
                    Plane to = target;
                    to.data = expected.data();
                    plain.Run(to, picture.Source().planes.third, chromaOdd);
                    to.data = actual.data();
                    run(to, picture.Source(), chromaOdd, kernels);
                    for (int32_t y = 0; plain.down && y < target.height;
                         ++y)  // columns up to a multiple of 4 are spare
                        std::copy(to.Row(y) + width, to.Row(y) + std::min((width + 3) / 4 * 4, target.stride),
                                  expected.begin() + y * target.stride + width);
                    ASSERT_EQ(actual, expected) << (plain.down ? "down" : "along") << plain.Length(2) << ", "
                                                << kernels.name << ", " << width << " x " << height << " into "
                                                << target.width << " x " << target.height << ", odd " << chromaOdd;
                }
    });
}

}  // namespace
}  // namespace clarivex
