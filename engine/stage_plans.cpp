#include "engine/stage_plans.h"

#include <algorithm>

namespace clarivex {
namespace {

int16_t Word(int32_t value) { return static_cast<int16_t>(value); }

int32_t EdgeDeadZone(const EdgeSettings& settings) {
    return std::clamp((settings.edgeDeadZone * settings.edgeGain) >> 2, 0, INT16_MAX);
}

EdgeLimits FullLimits(const EdgeSettings& settings) {
    return {.gain = Word(settings.edgeGain),
            .deadZone = Word(EdgeDeadZone(settings)),
            .outerWeight = Word(64 + settings.wideSlopeBase),
            .slope = Word(32 * settings.wideSlope),
            .offset = Word(settings.wideOffset),
            .margin = Word(std::clamp(settings.edgeMargin, INT16_MIN, 255))};
}

/// Beside the post filter folded gains would sharpen twice, unless the strength is to drive both.
bool DetailStageOn(const DetailSettings& settings, const DetailGains& gains) {
    if (settings.diffusedDetail) return false;
    const bool levelTables = settings.sharpenScheme == SharpenScheme::levelTables;
    if (levelTables && settings.wideDetailMode != WideDetail::aboveKnee && !settings.curveSharpening) return false;
    return IsSharpenActive(gains.postWide) || IsSharpenActive(gains.postNarrowH);
}

SharpenCoefficients DetailCoefficients(const DetailSettings& settings, const DetailGains& gains) {
    SharpenParams wide = gains.postWide;
    if (settings.wideDetailMode == WideDetail::fromZero) {
        wide.extraGainLog2 += wide.baseGainLog2;
        wide.baseGainLog2 = 0.0F;
        wide.knee = 0.0F;
    }
    return DeriveSharpenCoefficients(gains.postNarrowH, wide, 1.0F, 256.0F);
}

bool BoosterOn(const DetailSettings& settings) {
    return settings.wideDetailMode == WideDetail::fromZero && settings.detailBoostA != 0 && settings.detailBoostB != 0;
}

}  // namespace

RowStages PlanRowStages(const EngineSettings& settings, const DetailGains& gains, const PostFilter& filter) {
    const EdgeSettings& edges = settings.edges;
    const DetailSettings& detail = settings.detail;
    RowStages plan;
    plan.edgeStage = edges.edgeStageMode;
    plan.edgeLimits = FullLimits(edges);
    plan.postFilterOn = filter.on;
    plan.postTaps = filter.taps;
    SleepingRowStages& sleeping = plan.sleeping;
    sleeping.simpleLimits = {Word(edges.edgeGain), Word(EdgeDeadZone(edges)), Word(edges.edgeNeighbourWeight)};
    sleeping.detailOn = DetailStageOn(detail, gains);
    sleeping.detailGains = DetailCoefficients(detail, gains);
    sleeping.evenFilterPasses = detail.evenFilterPasses;
    sleeping.boosterOn = BoosterOn(detail);
    sleeping.booster = DeriveBoosterGains(detail.detailBoostA, detail.detailBoostB);
    return plan;
}

PreStage PlanRowPreStage(const PreStageGains& gains) {
    return {gains.gated, gains.kernel, DeriveSharpenCoefficients(gains.narrow, gains.wide, 1.0F, 256.0F)};
}

PreStage PlanColumnPreStage(const PreStageGains& gains) {
    return {gains.gated, gains.kernel, DeriveSharpenCoefficients(gains.narrow, gains.wide, 1.0F, 1.0F)};
}

WideStages PlanWideStages(const EdgeSettings& settings, const PostFilter& filter) {
    WideStages plan;
    plan.limitEdges = settings.edgeStageMode == EdgeStage::full && settings.edgeKernelSelect;
    plan.edgeLimits = FullLimits(settings);
    plan.postFilterOn = filter.on && ArePaired(filter.taps);
    plan.rowTaps = filter.taps;
    plan.columnTaps = HalvePostTaps(filter.taps);
    return plan;
}

}  // namespace clarivex
