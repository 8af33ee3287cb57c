#include "engine/enhancement_pass.h"

#include "algorithms/sleeping/edge_sharpeners.h"
#include "engine/sleeping/chroma_doubling.h"
#include "platform/tsc.h"

namespace clarivex {
namespace {

/// One pass over one frame. Run tells the steps in order.
class FramePass {
public:
    FramePass(const PassPlan& passPlan, const SourceImage& source, const ImagePlanes& target, EngineState& state,
              const KernelTable& kernels)
        : plan(passPlan), source(source), work(source), target(target), state(state), kernels(kernels) {}

    PassResult Run() {
        PassResult result{plan.Writes(), plan.written, plan.aspect, plan.noiseAmplitude, {}};
        if (plan.kind == PassKind::empty) return result;
        RenewTaps();
        const uint64_t startCycles = ReadTimeStamp();
        SmoothSource();
        result.correction = FollowLighting();
        if (plan.kind == PassKind::bypass) return result;
        Scale();
        NoteTime(startCycles);
        return result;
    }

private:
    void RenewTaps() {
        if (!state.filtersDirty) return;
        state.taps = DesignTaps(plan.filters);
        state.filtersDirty = false;
    }

    /// Stages that work in place get a copy: the decoder's frame must survive.
    void SmoothSource() {
        if (!plan.copiesSource) return;
        WorkingImage& copy = state.workspace.privateCopy;
        PrepareWorkingImage(copy, source.planes, source.end);
        work = SourceOf(copy);
        if (plan.smoothsChroma) SmoothChroma(copy.Planes().second, copy.Planes().third);
        SmoothColumns(copy.Planes().luma, plan.wholeColumns);
        SmoothRows(copy.Planes().luma, plan.wholeRows);
    }

    void SmoothChroma(const Plane& first, const Plane& second) const {
        SharpenRowsNarrow(second, plan.chroma);
        SharpenColumnsNarrow(first, plan.chroma);
        SharpenRowsNarrow(first, plan.chroma);
        SharpenColumnsNarrow(second, plan.chroma);
    }

    static void SmoothColumns(const Plane& luma, const PreStageGains& gains) {
        if (gains.kernel == PreKernel::narrow)
            SharpenColumnsNarrow(luma, gains.narrow);
        else if (gains.kernel == PreKernel::knee)
            SharpenColumnsPlain(luma, gains.narrow, gains.wide);
        if (gains.gated) SharpenColumnsGated(luma, gains.narrow, gains.wide);
    }

    static void SmoothRows(const Plane& luma, const PreStageGains& gains) {
        if (gains.kernel == PreKernel::narrow)
            SharpenRowsNarrow(luma, gains.narrow);
        else if (gains.kernel == PreKernel::knee)
            SharpenRowsKnee(luma, gains.narrow, gains.wide, false, RowDither::byRow, nullptr);
        if (gains.gated) SharpenRowsGated(luma, gains.narrow, gains.wide, RowDither::byRow);
    }

    LightingCorrection FollowLighting() {
        const LightingPlan& lighting = plan.lighting;
        if (!lighting.analysed) return lighting.correction;
        return AnalyseLighting(work.planes, lighting.elapsed, state.lighting, kernels);
    }

    void Scale() {
        switch (plan.kind) {
            case PassKind::keptSize: return KeepSize();
            case PassKind::rowsOnly: return ScaleRowsOnly();
            case PassKind::rowsFirst: return ScaleRowsFirst();
            case PassKind::columnsFirst: return ScaleColumnsFirst();
            case PassKind::doubled: return DoubleBothAxes();
            default: return;
        }
    }

    /// Chroma may lie in other memory than luma, whose end is known.
    static void CopyChroma(const Plane& to, const PlaneView& from) {
        CopyPlane(to, from, {.targetEnd = nullptr, .sourceEnd = from.End()});
    }

    void KeepSize() {
        if ((plan.planes & lumaPlane) != 0)
            EnhanceUnscaled(target, work, plan.postFilter.taps, plan.unscaledColumns, state.workspace.unscaled,
                            kernels);
        if ((plan.planes & secondPlane) != 0) CopyChroma(target.second, work.planes.second);
        if ((plan.planes & thirdPlane) != 0) CopyChroma(target.third, work.planes.third);
    }

    PictureScaler Scaler() const {
        return {state.workspace.scaler, kernels, plan.splitView ? &source.planes.luma : nullptr};
    }

    RowStages Rows() const {
        RowStages rows = plan.rows;
        rows.taps = state.taps.horizontal;
        if (rows.scale == AxisScale::twofold)
            rows.sleeping.twofoldTaps = DesignTwofoldTaps(state.taps.horizontalResponse);
        return rows;
    }

    ColumnStages Columns() const {
        ColumnStages columns = plan.columns;
        columns.taps = state.taps.vertical;
        return columns;
    }

    void ScaleRowsOnly() { Scaler().ScaleHorizontal(target, work, Rows(), plan.postFilter.chromaOdd, plan.planes); }

    void ScaleRowsFirst() {
        PictureScaler scaler = Scaler();
        WorkingImage& between = state.workspace.between;
        const RowStages rows = Rows();
        const ColumnStages columns = Columns();
        const uint32_t chromaPlanes = plan.planes & ~lumaPlane;
        between.Resize(plan.between.width, plan.between.height);
        scaler.ScaleHorizontal(between.Planes(), work, rows, plan.postFilter.chromaOdd, chromaPlanes);
        if ((plan.planes & lumaPlane) != 0) scaler.ScaleLumaBothAxes(target, between, work, rows, columns.taps);
        scaler.ScaleVertical(target, SourceOf(between), columns, chromaPlanes);
    }

    void ScaleColumnsFirst() {
        PictureScaler scaler = Scaler();
        WorkingImage& between = state.workspace.between;
        between.Resize(plan.between.width, plan.between.height);
        scaler.ScaleVertical(between.Planes(), work, Columns(), allPlanes);
        scaler.ScaleHorizontal(target, SourceOf(between), Rows(), plan.postFilter.chromaOdd, plan.planes);
    }

    void DoubleBothAxes() {
        WideStages stages = plan.wide;
        stages.taps = DesignTwofoldTaps(state.taps.horizontalResponse);
        ScaleBothTwice(target.luma, work.planes.luma, stages, state.workspace.wide, kernels);
        DoubleChroma(target.second, work.planes.second);
        DoubleChroma(target.third, work.planes.third);
    }

    void DoubleChroma(const Plane& to, const PlaneView& from) {
        const bool chromaOdd = plan.postFilter.chromaOdd;
        const int32_t stride = (2 * from.width + 15) & ~15;
        const Plane between{state.workspace.chroma.Prepare(stride * from.height), 2 * from.width, from.height, stride};
        DoubleChromaRows(between, from, chromaOdd, state.workspace.scaler.chroma, kernels);
        DoubleChromaColumns(to, between, chromaOdd, kernels);
    }

    void NoteTime(uint64_t startCycles) {
        const auto cycles = static_cast<int64_t>(ReadTimeStamp() - startCycles);
        state.timing.Note(plan.timing, plan.source, cycles);
    }

    const PassPlan& plan;
    const SourceImage& source;
    SourceImage work;  // the source, or its copy once a stage works in place
    const ImagePlanes& target;
    EngineState& state;
    const KernelTable& kernels;
};

}  // namespace

PassResult RunPass(const PassPlan& plan, const SourceImage& source, const ImagePlanes& target, EngineState& state,
                   const KernelTable& kernels) {
    return FramePass(plan, source, target, state, kernels).Run();
}

}  // namespace clarivex
