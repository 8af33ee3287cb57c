#include "engine/timing_block.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

constexpr TimingClass kind = TimingClass::bothAxes;

void Note(TimingBlock& block, std::initializer_list<int64_t> durations, int32_t width = 64, int32_t height = 48) {
    for (const int64_t cycles : durations) block.Note(kind, width, height, cycles);
}

TEST(TimingBlock, KeepsTheSmallestMeanOfThreeSamplesAndLeavesOutWhatTellsNothing) {
    TimingBlock block;
    Note(block, {10, 0, -5, 20});
    Note(block, {5}, 15, 48);  // too small to be timed, but its size is kept
    EXPECT_EQ(block.Figures(kind).meanCount, 0);
    Note(block, {5});  // the size has changed since
    EXPECT_EQ(block.Figures(kind).sampleCount, 2);
    Note(block, {31, 100, 100, 100, 6, 6, 6});
    EXPECT_EQ(block.Figures(kind).bestMean, 6);
    EXPECT_EQ(block.Figures(kind).meanCount, 3);
    EXPECT_EQ(block.Figures(kind).sampleCount, 0);
}

}  // namespace
}  // namespace clarivex
