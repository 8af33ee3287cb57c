// Tuning tables of the engine: what a strength means for taps and gains.
#pragma once

#include <array>
#include <cstdint>

namespace clarivex {

/// Ten rows picked by the whole part of the strength and mixed by its fraction; rows from 5 on are zero.
using SharpnessRows = std::array<std::array<int32_t, 8>, 10>;

// clang-format off

/// Post filter, hundredths by distance from the centre tap: three-halves mode.
constexpr SharpnessRows tapRows15{{
    {0, -13,  2, 1},
    {0, -27,  3, 1},
    {0, -35,  3, 2},
    {0, -35,  1, 1},
    {0, -32, -4, 1},
}};

/// The same without scaling.
constexpr SharpnessRows tapRows1{{
    {0,   0, 0, 0},
    {0, -16, 1, 0},
    {0, -26, 3, 0},
    {0, -31, 3, 0},
    {0, -33, 1, 0},
}};

/// The same for the twofold mode, tuning set 0.
constexpr SharpnessRows tapRows2{{
    {0, -12,  4,  3, 0},
    {0, -29, 14, -5, 2},
    {0, -37, 16, -5, 2},
    {0, -31,  3,  1, 0},
    {0, -30,  0,  0, 0},
}};

/// The same for the twofold mode, tuning set 1.
constexpr SharpnessRows tapRows2b{{
    {16, -13, -7, 12, -5, -3, 1, 1},
    {16, -22, -7, 12, -5, -3, 1, 1},
    {16, -30, -7, 12, -5, -3, 1, 1},
    {16, -33, -7, 11, -5, -3, 1, 1},
    {16, -34, -9, 10, -5, -3, 1, 1},
}};

/// Vertical gain without vertical scaling, tenths of a log2 gain.
constexpr SharpnessRows verticalGainRows{{
    {0},
    {4},
    {9},
    {12},
    {15},
}};

/// Additions to the two comb weights of the vertical response.
constexpr SharpnessRows verticalShapeRows{{
    {15,  -6},
    {29,  -8},
    {46, -10},
    {55, -10},
    {101, -39},
}};

/// Weights and offsets of the comb pairs of a prototype kernel.
struct CombSettings {
    int32_t weightA;
    int32_t weightB;
    int32_t offsetA;
    int32_t offsetB;
};

constexpr CombSettings horizontalComb        {19, -13, 64, 128};
constexpr CombSettings twofoldCombs[2]     {{19, -13, 64, 128}, {19, -20, 64, 128}};  // by tuning set
constexpr CombSettings verticalComb          { 8,  -2, 56, 115};

/// Knees of noise reduction by its level.
constexpr std::array<double, 7> noiseLevels{0.0, 0.5, 1.3, 2.1, 3.8, 6.8, 12.0};

// clang-format on

/// Unit of the comb weights: the single-precision 0.02.
constexpr double combWeightUnit = 0.02F;

}  // namespace clarivex
