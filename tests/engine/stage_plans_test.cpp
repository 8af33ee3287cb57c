#include "engine/stage_plans.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

SharpenParams Curve(float base, float extra, float knee) {
    SharpenParams params;
    params.baseGainLog2 = base;
    params.extraGainLog2 = extra;
    params.knee = knee;
    return params;
}

class StagePlans : public testing::Test {
protected:
    RowStages Rows(const SharpenParams& cross = {}) const { return PlanRows(engine, filter, cross); }

    EnhancementEngine engine;
    PostFilter filter{.on = true, .chromaOdd = false, .taps = {0, 0, 0, 0, 0, 0, 0, 0, 8160}};
};

TEST_F(StagePlans, RunResamplerLimiterAndPostFilterAtTheStart) {
    engine.tapsHorizontal.a[4] = 1;
    engine.tapsVertical.a[4] = 2;
    const RowStages rows = Rows();
    EXPECT_FALSE(rows.preStage.IsOn());
    EXPECT_EQ(rows.taps.a[4], 1);
    EXPECT_EQ(rows.edgeStage, EdgeStage::full);
    EXPECT_EQ(rows.edgeLimits.gain, 29);
    EXPECT_EQ(rows.edgeLimits.deadZone, 29);
    EXPECT_EQ(rows.edgeLimits.outerWeight, 77);
    EXPECT_EQ(rows.edgeLimits.slope, 800);
    EXPECT_FALSE(rows.detailOn);
    EXPECT_TRUE(rows.postFilterOn);
    EXPECT_EQ(rows.postTaps, filter.taps);
    EXPECT_FALSE(rows.boosterOn);
    EXPECT_FALSE(rows.crossOn);
    const ColumnStages columns = PlanColumns(engine);
    EXPECT_EQ(columns.taps.a[4], 2);
    EXPECT_FALSE(columns.preStage.IsOn());
    EXPECT_FALSE(columns.crossOn);
}

TEST_F(StagePlans, TakeThePreStageOfTheFusedAxisOnly) {
    engine.stages.gatedH = engine.stages.gatedV = 2;
    engine.stages.preModeH = 2;
    engine.stages.preModeV = 1;
    engine.stages.preNarrowH = engine.stages.preWideH = engine.stages.preWideV = Curve(1, 0, 0);
    EXPECT_FALSE(Rows().preStage.IsOn());
    EXPECT_FALSE(PlanColumns(engine).preStage.IsOn());
    engine.stages.fuseHorizontal = engine.stages.fuseVertical = 1;
    EXPECT_TRUE(Rows().preStage.gated);
    EXPECT_EQ(Rows().preStage.mode, 2);
    EXPECT_EQ(Rows().preStage.gains.narrowBase, 5);
    EXPECT_EQ(Rows().preStage.gains.wideBase, 10922);
    EXPECT_EQ(PlanColumns(engine).preStage.mode, 1);
    EXPECT_EQ(PlanColumns(engine).preStage.gains.wideBase, 42);
}

TEST_F(StagePlans, NameTheEdgeStageAndItsValues) {
    engine.edgeGain = 10;
    engine.edgeDeadZone = 7;
    engine.edgeMargin = 300;
    engine.edgeNeighbourWeight = 32;
    for (const auto& [mode, stage] : {std::pair{0, EdgeStage::none}, {1, EdgeStage::simple}, {3, EdgeStage::full}}) {
        engine.edgeStageMode = mode;
        EXPECT_EQ(Rows().edgeStage, stage);
    }
    EXPECT_EQ(Rows().edgeLimits.deadZone, 17);
    EXPECT_EQ(Rows().edgeLimits.margin, 255);
    EXPECT_EQ(Rows().simpleLimits.gain, 10);
    EXPECT_EQ(Rows().simpleLimits.deadZone, 17);
    EXPECT_EQ(Rows().simpleLimits.neighbourWeight, 32);
}

TEST_F(StagePlans, RunTheDetailStageWhenSomethingAsksForIt) {
    engine.stages.postWide = Curve(1, 1, 15);
    EXPECT_FALSE(Rows().detailOn) << "the post filter takes its place";
    engine.curveSharpening = 1;
    EXPECT_TRUE(Rows().detailOn);
    engine.curveSharpening = 0;
    engine.wideDetailMode = 1;
    EXPECT_TRUE(Rows().detailOn);
    engine.wideDetailMode = 2;
    engine.sharpenScheme = 1;
    EXPECT_TRUE(Rows().detailOn);
    engine.stages.postWide = {};
    EXPECT_FALSE(Rows().detailOn);
    engine.stages.postNarrowH = Curve(1, 0, 0);
    EXPECT_TRUE(Rows().detailOn);
}

TEST_F(StagePlans, FoldTheWideGainsUnlessToldNotTo) {
    engine.stages.postWide = Curve(1, 1, 0.5F);
    const SharpenCoefficients folded = Rows().detailGains;
    EXPECT_EQ(folded.wideBase, 0);
    EXPECT_EQ(folded.wideExtra, 3 * 10922);
    EXPECT_EQ(folded.wideKnee, 0);
    engine.wideDetailMode = 1;
    const SharpenCoefficients kept = Rows().detailGains;
    EXPECT_EQ(kept.wideBase, 10922);
    EXPECT_EQ(kept.wideExtra, 2 * 10922);
    EXPECT_EQ(kept.wideKnee, 10922);
}

TEST_F(StagePlans, BoostSmallSignalsWithBothValuesSet) {
    engine.detailBoostB = 8;
    EXPECT_FALSE(Rows().boosterOn);
    engine.detailBoostA = 10;
    EXPECT_TRUE(Rows().boosterOn);
    EXPECT_EQ(Rows().booster.gain, 2);
    EXPECT_EQ(Rows().booster.deadZone, 20);
    engine.wideDetailMode = 1;
    EXPECT_FALSE(Rows().boosterOn);
}

TEST_F(StagePlans, FilterAcrossWhereTheOtherAxisIsNotScaled) {
    const RowStages rows = Rows(Curve(1, 1, 2.5F));
    EXPECT_TRUE(rows.crossOn);
    EXPECT_EQ(rows.cross.base, 5);
    EXPECT_EQ(rows.cross.extra, 10);
    EXPECT_EQ(rows.cross.deadZone, 25);
}

}  // namespace
}  // namespace clarivex
