#include "engine/stage_plans.h"

#include <algorithm>

namespace clarivex {
namespace {

int16_t Word(int32_t value) { return static_cast<int16_t>(value); }

int32_t EdgeDeadZone(const EngineSettings& settings) {
    return std::clamp((settings.edgeDeadZone * settings.edgeGain) >> 2, 0, INT16_MAX);
}

EdgeStage EdgeStageOf(const EngineSettings& settings) {
    if (settings.edgeStageMode >= 2) return EdgeStage::full;
    return settings.edgeStageMode == 1 ? EdgeStage::simple : EdgeStage::none;
}

EdgeLimits FullLimits(const EngineSettings& settings) {
    return {.gain = Word(settings.edgeGain),
            .deadZone = Word(EdgeDeadZone(settings)),
            .outerWeight = Word(64 + settings.wideSlopeBase),
            .slope = Word(32 * settings.wideSlope),
            .offset = Word(settings.wideOffset),
            .margin = Word(std::clamp(settings.edgeMargin, INT16_MIN, 255))};
}

bool DetailStageOn(const EngineSettings& settings, const StageSettings& stages) {
    if (settings.diffusedDetail != 0) return false;
    if (settings.sharpenScheme > 1 && settings.wideDetailMode != 1 && settings.curveSharpening == 0) return false;
    return IsSharpenActive(stages.postWide) || IsSharpenActive(stages.postNarrowH);
}

SharpenCoefficients DetailGainsOf(const EngineSettings& settings, const StageSettings& stages) {
    SharpenParams wide = stages.postWide;
    if (settings.wideDetailMode != 1) {
        // Folded: the whole gain applies from zero on.
        wide.extraGainLog2 += wide.baseGainLog2;
        wide.baseGainLog2 = 0.0F;
        wide.knee = 0.0F;
    }
    return DeriveSharpenCoefficients(stages.postNarrowH, wide, 1.0F, 256.0F);
}

RankStage RankStageOf(const EngineSettings& settings) {
    switch (settings.columnRankMode) {
        case -1: return RankStage::smaller;
        case 1: return RankStage::larger;
        default: return RankStage::none;
    }
}

bool BoosterOn(const EngineSettings& settings) {
    return settings.wideDetailMode == 2 && settings.detailBoostA != 0 && settings.detailBoostB != 0;
}

}  // namespace

RowStages PlanRows(const EnhancementEngine& engine, const PostFilter& filter, const SharpenParams& cross) {
    const StageSettings& stages = engine.stages;
    RowStages plan;
    plan.taps = engine.tapsHorizontal;
    if (stages.fuseHorizontal != 0)
        plan.preStage = {stages.gatedH != 0, stages.preModeH,
                         DeriveSharpenCoefficients(stages.preNarrowH, stages.preWideH, 1.0F, 256.0F)};
    plan.edgeStage = EdgeStageOf(engine);
    plan.edgeLimits = FullLimits(engine);
    plan.simpleLimits = {Word(engine.edgeGain), Word(EdgeDeadZone(engine)), Word(engine.edgeNeighbourWeight)};
    plan.detailOn = DetailStageOn(engine, stages);
    plan.detailGains = DetailGainsOf(engine, stages);
    plan.postFilterOn = filter.on;
    plan.postTaps = filter.taps;
    plan.evenFilterPasses = engine.evenFilterPasses;
    plan.boosterOn = BoosterOn(engine);
    plan.booster = DeriveBoosterGains(engine.detailBoostA, engine.detailBoostB);
    plan.crossOn = IsSharpenActive(cross);
    plan.cross = DeriveCrossGains(cross);
    return plan;
}

RowStages PlanTwofoldRows(const EnhancementEngine& engine, const PostFilter& filter) {
    RowStages plan = PlanRows(engine, filter, {});
    plan.scale = RowScale::twofold;
    plan.twofoldTaps = DesignTwofoldTaps(engine.responses[0]);
    plan.rankStage = RankStageOf(engine);
    return plan;
}

WideStages PlanWide(const EnhancementEngine& engine, const PostFilter& filter) {
    WideStages plan;
    plan.taps = DesignTwofoldTaps(engine.responses[0]);
    plan.limitEdges = EdgeStageOf(engine) == EdgeStage::full && engine.edgeKernelSelect == 2;
    plan.edgeLimits = FullLimits(engine);
    plan.postFilterOn = filter.on && ArePaired(filter.taps);
    plan.rowTaps = filter.taps;
    plan.columnTaps = HalvePostTaps(filter.taps);
    return plan;
}

ColumnStages PlanColumns(const EnhancementEngine& engine) {
    const StageSettings& stages = engine.stages;
    ColumnStages plan;
    plan.taps = engine.tapsVertical;
    if (stages.fuseVertical != 0)
        plan.preStage = {stages.gatedV != 0, stages.preModeV,
                         DeriveSharpenCoefficients(stages.preNarrowV, stages.preWideV, 1.0F, 1.0F)};
    return plan;
}

}  // namespace clarivex
