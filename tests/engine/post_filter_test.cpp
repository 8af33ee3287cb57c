#include "engine/post_filter.h"

#include <gtest/gtest.h>

#include <numeric>

namespace clarivex {
namespace {

/// A strength at any size.
Strength Of(double value) { return StrengthOf(static_cast<float>(-value), {1, 1}); }

struct Design {
    int32_t mode;
    int32_t tuningSet;
    double strength;
    int32_t shape;
    DetailTaps taps;
};

// clang-format off
constexpr Design designs[] = {
    // Odd filters around tap 8.
    {0, 0, 0.795536458, 0, {0, 0, 0, 0, 0, 0, 85, -1364, 10718, -1364, 85}},
    {1, 0, 0.795536458, 0, {0, 0, 0, 0, 0, 138, 385, -3321, 13756, -3321, 385, 138}},
    {1, 0, 1.3641479,   0, {0, 0, 0, 0, 0, 228, 501, -4991, 16684, -4991, 501, 228}},
    {1, 0, 4.5,         0, {0, 0, 0, 0, 0, 63, -251, -2009, 12554, -2009, -251, 63}},
    {1, 0, 0.0,         0, {0, 0, 0, 0, 0, 102, 204, -1326, 10200, -1326, 204, 102}},
    {0, 0, 0.0,         0, {0, 0, 0, 0, 0, 0, 0, 0, 8160}},
    {1, 0, 8.9999,      0, {0, 0, 0, 0, 0, 0, 0, 0, 8160}},
    {1, 1, 0.795536458, 0, {0, 0, 0, 0, 0, 138, 385, -3321, 13756, -3321, 385, 138}},
    // Even filters between taps 7 and 8: of 8, 12 and 16 taps.
    {0, 0, 3.25, 1, {0, 0, 0, 0, -475, 1924, -9744, 12391, 12391, -9744, 1924, -475}},
    {1, 0, 2.5,  2, {0, 0, 0, 0, 332, 443, -7749, 11070, 11070, -7749, 443, 332}},
    {2, 0, 1.5,  1, {0, 0, 0, 286, -1058, 3175, -7235, 8928, 8928, -7235, 3175, -1058, 286}},
    {2, 1, 1.5,  1, {106, 106, -318, -530, 1019, 20, -4619, 8312, 8312, -4619, 20, 1019, -530, -318, 106, 106}},
};
// clang-format on

TEST(DesignPostFilter, GivesTheTapsOfModeShapeAndStrength) {
    for (const Design& design : designs) {
        DetailSettings settings;
        const auto shape = static_cast<FilterShape>(design.shape);
        settings.filterShapes.fill(shape == FilterShape::odd ? FilterShape::evenPair : FilterShape::odd);
        settings.filterShapes[static_cast<size_t>(design.mode == 2 ? 2 + design.tuningSet : design.mode)] = shape;
        const PostFilter filter = DesignPostFilter(settings, static_cast<TuningSet>(design.tuningSet),
                                                   static_cast<AxisScale>(design.mode), Of(design.strength));
        EXPECT_EQ(filter.taps, design.taps) << "mode " << design.mode << ", strength " << design.strength;
        EXPECT_TRUE(filter.on);
        EXPECT_EQ(filter.chromaOdd, design.shape != 0);
    }
}

TEST(DesignPostFilter, KeepsTheGainOfItsShapeAtEveryStrength) {
    for (int32_t mode = 0; mode <= 2; ++mode)
        for (int32_t shape = 0; shape <= 2; ++shape)
            for (double strength = 0; strength < 9; strength += 0.0625) {
                DetailSettings settings;
                settings.filterShapes.fill(static_cast<FilterShape>(shape));
                const DetailTaps taps =
                    DesignPostFilter(settings, TuningSet::first, static_cast<AxisScale>(mode), Of(strength)).taps;
                ASSERT_EQ(std::accumulate(taps.begin(), taps.end(), 0), shape == 0 ? 8160 : 8192)
                    << "mode " << mode << ", shape " << shape << ", strength " << strength;
                ASSERT_EQ(ChooseDetailFirForm(taps) == DetailFirForm::general, shape == 0);
            }
}

}  // namespace
}  // namespace clarivex
