#include "engine/pass_plan.h"

#include "engine/detail_gains.h"
#include "engine/stage_plans.h"

namespace clarivex {
namespace {

constexpr int64_t adoptAtOnce = 50000000;  // ticks: five seconds, as after a gap
constexpr float steadyNoise = 0.75F;       // noise that every enhanced frame gets
constexpr AxisScale none = AxisScale::none;
constexpr AxisScale threeHalves = AxisScale::threeHalves;
constexpr AxisScale twofold = AxisScale::twofold;

/// One plan. Make tells the decisions in order; each reads what the ones before it have put into the plan.
class PassPlanner {
public:
    PassPlanner(const EngineSettings& engineSettings, const FrameSize& size, const PassRequest& passRequest)
        : settings(engineSettings), request(passRequest) {
        plan.source = size;
    }

    PassPlan Make() {
        if (plan.source.width <= 0 || plan.source.height <= 0) return plan;
        const bool bypass = LimitSize();
        plan.strength = StrengthOf(settings.frame.sharpness, plan.source);
        plan.filters = PlanFilters(settings, plan.strength, plan.modes.horizontal);
        CorrectAspect();
        PlanLighting(bypass);
        if (bypass) {
            plan.kind = PassKind::bypass;
            return plan;
        }
        const NoiseReduction reduction = PlanNoiseReduction(settings.noise, plan.modes);
        PlacePreStages(reduction);
        SetGains(reduction.knee);
        ChooseWay();
        if (plan.Writes()) MeasurePlanes();
        plan.timing = TimingOf();
        return plan;
    }

private:
    /// Large pictures are scaled less, and the largest are not enhanced at all.
    bool LimitSize() {
        const ScaleModes wanted{settings.frame.horizontalMode, settings.frame.verticalMode};
        const OrderSettings& order = settings.order;
        plan.modes = order.liftSizeLimits ? KnownModes(wanted) : LimitModes(wanted, plan.source);
        const bool largest = int64_t{plan.source.width} * plan.source.height >= bypassArea;
        const bool lifted = request.keepFullSize || order.liftSizeLimits || order.tuningSet != TuningSet::first;
        if (!largest || lifted) return false;
        plan.modes = {};
        return true;
    }

    void CorrectAspect() {
        constexpr float factors[3] = {1.0F, 1.5F, 2.0F};
        const auto factor = [&](AxisScale scale) { return factors[static_cast<size_t>(scale)]; };
        plan.aspect = request.pixelAspect * factor(plan.modes.horizontal) / factor(plan.modes.vertical);
    }

    void PlanLighting(bool bypass) {
        if (!settings.frame.lightingEnabled) return;
        if (request.correction && !request.lightingAdoptNow) {
            plan.lighting.correction = *request.correction;
            return;
        }
        plan.lighting.analysed = !bypass;
        plan.lighting.elapsed = request.keepFullSize || request.lightingAdoptNow ? adoptAtOnce : request.duration;
    }

    /// A pre-stage of the axis that is scaled first runs inside the scaler's strips; others run over the whole picture.
    void PlacePreStages(const NoiseReduction& reduction) {
        const bool rowsLead = !settings.order.verticalFirst;
        const bool rowsScaled = plan.modes.horizontal != none;
        const bool fusesRows = rowsLead && rowsScaled;
        const bool fusesColumns = !rowsLead && plan.modes.vertical != none;
        plan.smoothsChroma = reduction.smoothsChroma;
        plan.chroma = reduction.chroma;
        (fusesRows ? fusedRows : plan.wholeRows) = reduction.rows;
        (fusesColumns ? fusedColumns : plan.wholeColumns) = reduction.columns;
        plan.copiesSource = plan.smoothsChroma || plan.wholeRows.IsOn() || plan.wholeColumns.IsOn() ||
                            fusedRows.IsOn() || (fusedColumns.IsOn() && rowsScaled);
    }

    void SetGains(double noiseKnee) {
        gains = PlanDetailGains(settings.detail, {.modes = plan.modes,
                                                  .strength = plan.strength,
                                                  .noiseKnee = noiseKnee,
                                                  .size = plan.source,
                                                  .aspect = plan.aspect,
                                                  .ditherGain = settings.frame.ditherGain});
        plan.noiseAmplitude = gains.outputNoise + steadyNoise;
        plan.postFilter =
            DesignPostFilter(settings.detail, settings.order.tuningSet, plan.modes.horizontal, plan.strength);
    }

    void ChooseWay() {
        const auto& [horizontal, vertical] = plan.modes;
        plan.splitView = settings.order.splitView;
        if (horizontal == none) {
            plan.kind =
                plan.copiesSource || settings.frame.sharpness != 0.0F ? PassKind::keptSize : PassKind::untouched;
            plan.unscaledColumns = gains.postNarrowV;
        } else if (vertical == twofold) {
            plan.kind = PassKind::doubled;
            plan.wide = PlanWideStages(settings.edges, plan.postFilter);
        } else {
            plan.kind = vertical == none               ? PassKind::rowsOnly
                        : settings.order.verticalFirst ? PassKind::columnsFirst
                                                       : PassKind::rowsFirst;
            PlanStrips();
        }
    }

    void PlanStrips() {
        plan.rows = PlanRowStages(settings, gains, plan.postFilter);
        plan.rows.scale = plan.modes.horizontal;
        plan.rows.sleeping.preStage = PlanRowPreStage(fusedRows);
        plan.columns.sleeping.preStage = PlanColumnPreStage(fusedColumns);
        if (plan.rows.scale == twofold) plan.rows.sleeping.rankStage = settings.detail.columnRankMode;
        if (plan.kind == PassKind::rowsOnly) {
            plan.rows.crossOn = IsSharpenActive(gains.postNarrowV);
            plan.rows.cross = DeriveCrossGains(gains.postNarrowV);
        }
    }

    void MeasurePlanes() {
        const auto& [width, height] = plan.source;
        const auto& [horizontal, vertical] = plan.modes;
        plan.target = {Scaled(width, horizontal), Scaled(height, vertical)};
        if (plan.kind == PassKind::rowsFirst) plan.between = {plan.target.width, height};
        if (plan.kind == PassKind::columnsFirst) plan.between = {width, plan.target.height};
        const bool lumaFits = horizontal != twofold || plan.kind == PassKind::doubled || width >= shortestDoubledRow;
        const bool choice =
            plan.kind == PassKind::keptSize || (plan.kind == PassKind::rowsFirst && horizontal != twofold);
        plan.planes = choice ? request.planes : lumaFits ? allPlanes : allPlanes & ~lumaPlane;
        if (!lumaFits) return;
        plan.written = plan.target;
        if (plan.kind == PassKind::keptSize) plan.written.height = height;  // a vertical mode on its own scales nothing
    }

    TimingClass TimingOf() const {
        if (plan.modes == ScaleModes{threeHalves, none}) return TimingClass::rowsOnly;
        if (plan.modes == ScaleModes{threeHalves, threeHalves})
            return plan.kind == PassKind::columnsFirst ? TimingClass::columnsFirst : TimingClass::bothAxes;
        return plan.modes == ScaleModes{twofold, threeHalves} ? TimingClass::twofoldRows : TimingClass::none;
    }

    const EngineSettings& settings;
    const PassRequest& request;
    PassPlan plan;
    PreStageGains fusedRows;
    PreStageGains fusedColumns;
    DetailGains gains;
};

}  // namespace

PassPlan MakePassPlan(const EngineSettings& settings, const FrameSize& size, const PassRequest& request) {
    return PassPlanner(settings, size, request).Make();
}

}  // namespace clarivex
