#include "algorithms/unscaled.h"

#include "tests/algorithms/plain_unscaled.h"
#include "tests/support/guarded_rows.h"
#include "tests/support/test.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

struct Walk {
    DetailTaps taps;
    float baseLog2, extraLog2;
    int32_t gain;  ///< in sixteenths of the vertical detail: of 5 · (2^base − 1), and of what extra adds, each rounded
};

constexpr DetailTaps pass{0, 0, 0, 0, 0, 0, 0, 0, 8160};
constexpr DetailTaps five{0, 0, 0, 0, 0, 0, 85, -1364, 10718, -1364, 85};
constexpr DetailTaps eight{9, 9, 9, 9, -475, 1924, -9744, 12391, 12391, -9744, 1924, -475, 9, 9, 9, 9};
constexpr Walk walks[] = {{pass, 0, 0, 0},
                          {pass, 0.65F, 0, 3},
                          {pass, 0.5F, 0.5F, 2 + 3},
                          {pass, -500, 0, -5},
                          {five, 0, 0, 0},
                          {five, 0.65F, 0, 3},
                          {eight, -500, 500, 0},
                          {eight, -500, 0, -5},
                          {{0, 0, 0, 0, 0, 0, 0, 0, 8160, 40}, 0, 0, 0},
                          {{0, 0, 0, 0, 0, 0, 0, 40, 8160}, 0, 0, 0},
                          {{0, 0, 0, 0, 0, 0, 0, 0, 8160, 0, 0, 9}, 0, 0, 0}};

TEST(UnscaledWalk, LeavesWhatThePlainWalkSaysAtEverySizeAndWidthOfKernels) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        UnscaledScratch scratch;
        std::mt19937 random(1);
        for (int32_t width = 1; width <= 150; width += width < 48 ? 1 : 17)
            for (const Walk& walk : walks) {
                const int32_t height = 1 + UpTo(random, 9);
                const DecodedPicture picture(width, height, width, Texture::hard, 9);
                const WorkingImage target = TestImage(width, height, Texture::hard, 1);
                const WorkingImage before = TestImage(width, height, Texture::hard, 1);
                SourceImage source = picture.Source();
                const bool copies = walk.taps == pass && walk.baseLog2 == 0;
                if (width % 2 == 0) source.end = source.planes.luma.Row(height - 1) + width;
                SharpenParams column;
                column.baseGainLog2 = walk.baseLog2;
                column.extraGainLog2 = walk.extraLog2;
                column.knee = 1;
                const UnscaledWalk rows(source.Luma(), walk.taps, column, scratch, kernels);
                for (int32_t y = 0; y < height && rows.WritesRows(); ++y) rows.MakeRow(y, target.Planes().luma.Row(y));
                if (copies) {
                    EXPECT_TRUE(SameSamples(target.Planes().luma, source.planes.luma)) << width << " x " << height;
                    continue;
                }
                const Plane& luma = target.Planes().luma;
                for (int32_t y = 0; y <= height; ++y)
                    for (int32_t x = 0; x < luma.stride; ++x) {
                        const bool written = width >= 9 && x < (width + 1) / 2 * 2 && y < height;
                        ASSERT_EQ(luma.Row(y)[x], written ? PlainUnscaled(source, walk.taps, walk.gain, x, y)
                                                          : before.Planes().luma.Row(y)[x])
                            << kernels.name << ", walk " << &walk - walks << ", " << width << " x " << height << ": "
                            << x << ", " << y;
                    }
            }
    });
}

}  // namespace
}  // namespace clarivex
