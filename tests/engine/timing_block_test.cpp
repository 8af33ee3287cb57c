#include "engine/timing_block.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

constexpr TimingClass kind = TimingClass::bothAxes;

void Note(TimingBlock& block, std::initializer_list<int64_t> durations, int32_t width = 64, int32_t height = 48) {
    for (const int64_t cycles : durations) block.Note(kind, width, height, cycles);
}

TEST(TimingBlock, KeepsTheSmallestMeanOfThreeSamples) {
    TimingBlock block;
    Note(block, {10, 20});
    EXPECT_EQ(block.Figures(kind).sampleCount, 2);
    EXPECT_EQ(block.Figures(kind).meanCount, 0);
    Note(block, {31});
    EXPECT_EQ(block.Figures(kind).bestMean, 20);
    Note(block, {100, 100, 100, 6, 6, 6});
    EXPECT_EQ(block.Figures(kind).bestMean, 6);
    EXPECT_EQ(block.Figures(kind).meanCount, 3);
    EXPECT_EQ(block.Figures(kind).sampleCount, 0);
}

TEST(TimingBlock, LeavesOutWhatTellsNothing) {
    TimingBlock block;
    Note(block, {1});
    Note(block, {0, -5});
    block.Note(TimingClass::none, 64, 48, 5);
    EXPECT_EQ(block.Figures(kind).sampleCount, 1);
    Note(block, {5}, 15, 48);
    EXPECT_EQ(block.Figures(kind).sampleCount, 1) << "too small to be timed, but its size is kept";
    Note(block, {5});
    EXPECT_EQ(block.Figures(kind).sampleCount, 1) << "the size has changed since";
    EXPECT_EQ(block.Figures(kind).samples[0], 5);
}

}  // namespace
}  // namespace clarivex
