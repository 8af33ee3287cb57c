#include "engine/enhancement_pass.h"

#include <algorithm>

#include "algorithms/sleeping/edge_sharpeners.h"
#include "engine/chroma_scalers.h"
#include "engine/sleeping/chroma_doubling.h"
#include "platform/tsc.h"

namespace clarivex {
namespace {

void SmoothChroma(const Plane& first, const Plane& second, const SharpenParams& params) {
    SharpenRowsNarrow(second, params);
    SharpenColumnsNarrow(first, params);
    SharpenRowsNarrow(first, params);
    SharpenColumnsNarrow(second, params);
}

void SmoothColumns(const Plane& luma, const PreStageGains& gains) {
    if (gains.kernel == PreKernel::narrow)
        SharpenColumnsNarrow(luma, gains.narrow);
    else if (gains.kernel == PreKernel::knee)
        SharpenColumnsPlain(luma, gains.narrow, gains.wide);
    if (gains.gated) SharpenColumnsGated(luma, gains.narrow, gains.wide);
}

void SmoothRows(const Plane& luma, const PreStageGains& gains) {
    if (gains.kernel == PreKernel::narrow)
        SharpenRowsNarrow(luma, gains.narrow);
    else if (gains.kernel == PreKernel::knee)
        SharpenRowsKnee(luma, gains.narrow, gains.wide, false, RowDither::byRow, nullptr);
    if (gains.gated) SharpenRowsGated(luma, gains.narrow, gains.wide, RowDither::byRow);
}

/// Chroma may lie in other memory than luma, whose end is known.
void CopyChroma(const Plane& to, const PlaneView& from) {
    CopyPlane(to, from, {.targetEnd = nullptr, .sourceEnd = from.End()});
}

}  // namespace

PassResult EnhancementPass::Begin() {
    PassResult result{plan.Writes(), plan.written, plan.aspect, plan.noiseAmplitude, {}};
    if (plan.kind == PassKind::empty) return result;
    RenewTaps();
    startCycles = ReadTimeStamp();
    SmoothSource();
    result.correction = FollowLighting();
    return result;
}

void EnhancementPass::RenewTaps() {
    if (!state.filtersDirty) return;
    state.taps = DesignTaps(plan.filters);
    state.filtersDirty = false;
}

/// Stages that work in place get a copy: the decoder's frame must survive.
void EnhancementPass::SmoothSource() {
    if (!plan.copiesSource) return;
    WorkingImage& copy = state.workspace.privateCopy;
    PrepareWorkingImage(copy, source.planes, source.end);
    work = SourceOf(copy);
    if (plan.smoothsChroma) SmoothChroma(copy.Planes().second, copy.Planes().third, plan.chroma);
    SmoothColumns(copy.Planes().luma, plan.wholeColumns);
    SmoothRows(copy.Planes().luma, plan.wholeRows);
}

LightingCorrection EnhancementPass::FollowLighting() {
    const LightingPlan& lighting = plan.lighting;
    if (!lighting.analysed) return lighting.correction;
    return AnalyseLighting(work.planes, lighting.elapsed, state.lighting, kernels);
}

void EnhancementPass::WritePlanes(const ImagePlanes& target) { Run(target, nullptr); }

void EnhancementPass::GiveRows(const ImagePlanes& chroma, RowSink& sink) { Run(chroma, &sink); }

void EnhancementPass::Run(const ImagePlanes& target, RowSink* sink) {
    switch (plan.kind) {
        case PassKind::empty:
        case PassKind::bypass: return;
        case PassKind::untouched: break;
        case PassKind::keptSize: KeepSize(target, sink); break;
        case PassKind::rowsOnly: ScaleRowsOnly(target); break;
        case PassKind::rowsFirst: ScaleRowsFirst(target, sink); break;
        case PassKind::columnsFirst: ScaleColumnsFirst(target); break;
        case PassKind::doubled: DoubleBothAxes(target); break;
    }
    NoteTime();
}

void EnhancementPass::KeepSize(const ImagePlanes& target, RowSink* sink) {
    if ((plan.planes & secondPlane) != 0) CopyChroma(target.second, work.planes.second);
    if ((plan.planes & thirdPlane) != 0) CopyChroma(target.third, work.planes.third);
    if ((plan.planes & lumaPlane) != 0) KeepLuma(target.luma, sink);
}

void EnhancementPass::KeepLuma(const Plane& target, RowSink* sink) {
    UnscaledScratch& scratch = state.workspace.unscaled;
    const UnscaledWalk walk(work.Luma(), plan.postFilter.taps, plan.unscaledColumns, scratch, kernels);
    if (!walk.WritesRows()) return;
    const int32_t height = plan.source.height;
    const Plane kept = RowsIn(scratch.finished, plan.source.width, sinkRows);
    for (int32_t y = 0; y < height; y += sinkRows) {
        const int32_t count = std::min(sinkRows, height - y);
        const Plane rows = sink == nullptr ? RowsOf(target, y, count) : RowsOf(kept, 0, count);
        for (int32_t i = 0; i < rows.height; ++i) walk.MakeRow(y + i, rows.Row(i));
        if (sink != nullptr) sink->TakeLuma(y, rows);
    }
}

PictureScaler EnhancementPass::Scaler() const {
    return {state.workspace.scaler, kernels, plan.splitView ? &source.planes.luma : nullptr};
}

RowStages EnhancementPass::Rows() const {
    RowStages rows = plan.rows;
    rows.taps = state.taps.horizontal;
    if (rows.scale == AxisScale::twofold) rows.sleeping.twofoldTaps = DesignTwofoldTaps(state.taps.horizontalResponse);
    return rows;
}

ColumnStages EnhancementPass::Columns() const {
    ColumnStages columns = plan.columns;
    columns.taps = state.taps.vertical;
    return columns;
}

void EnhancementPass::ScaleRowsOnly(const ImagePlanes& target) {
    Scaler().ScaleHorizontal(target, work, Rows(), plan.postFilter.chromaOdd, plan.planes);
}

void EnhancementPass::ScaleRowsFirst(const ImagePlanes& target, RowSink* sink) {
    const RowStages rows = Rows();
    const ColumnStages columns = Columns();
    if (rows.scale == AxisScale::twofold)
        ScaleTwofoldChroma(target, rows, columns);
    else
        ScaleChroma(target);
    if ((plan.planes & lumaPlane) == 0) return;
    if (sink == nullptr)
        Scaler().ScaleLumaBothAxes(target.luma, work.Luma(), rows, columns.taps);
    else
        Scaler().ScaleLumaBothAxes(*sink, plan.target, work.Luma(), rows, columns.taps);
}

void EnhancementPass::ScaleChroma(const ImagePlanes& target) {
    const auto scale = [&](const Plane& to, const PlaneView& from) {
        ScaleChromaBothAxes(to, from, (plan.between.width + 1) / 2, plan.postFilter.chromaOdd,
                            state.workspace.scaler.chroma, kernels);
    };
    if ((plan.planes & secondPlane) != 0) scale(target.second, work.planes.second);
    if ((plan.planes & thirdPlane) != 0) scale(target.third, work.planes.third);
}

void EnhancementPass::ScaleTwofoldChroma(const ImagePlanes& target, const RowStages& rows,
                                         const ColumnStages& columns) {
    WorkingImage& between = state.workspace.between;
    const uint32_t planes = plan.planes & ~lumaPlane;
    between.ResizeChroma(plan.between.width, plan.between.height);
    Scaler().ScaleHorizontal(between.Planes(), work, rows, plan.postFilter.chromaOdd, planes);
    Scaler().ScaleVertical(target, SourceOf(between), columns, planes);
}

void EnhancementPass::ScaleColumnsFirst(const ImagePlanes& target) {
    PictureScaler scaler = Scaler();
    WorkingImage& between = state.workspace.between;
    between.Resize(plan.between.width, plan.between.height);
    scaler.ScaleVertical(between.Planes(), work, Columns(), allPlanes);
    scaler.ScaleHorizontal(target, SourceOf(between), Rows(), plan.postFilter.chromaOdd, plan.planes);
}

void EnhancementPass::DoubleBothAxes(const ImagePlanes& target) {
    WideStages stages = plan.wide;
    stages.taps = DesignTwofoldTaps(state.taps.horizontalResponse);
    ScaleBothTwice(target.luma, work.planes.luma, stages, state.workspace.wide, kernels);
    DoubleChroma(target.second, work.planes.second);
    DoubleChroma(target.third, work.planes.third);
}

void EnhancementPass::DoubleChroma(const Plane& to, const PlaneView& from) {
    const bool chromaOdd = plan.postFilter.chromaOdd;
    const int32_t stride = (2 * from.width + 15) & ~15;
    const Plane between{state.workspace.chroma.Prepare(stride * from.height), 2 * from.width, from.height, stride};
    DoubleChromaRows(between, from, chromaOdd, state.workspace.scaler.chroma, kernels);
    DoubleChromaColumns(to, between, chromaOdd, kernels);
}

void EnhancementPass::NoteTime() {
    const auto cycles = static_cast<int64_t>(ReadTimeStamp() - startCycles);
    state.timing.Note(plan.timing, plan.source, cycles);
}

PassResult RunPass(const PassPlan& plan, const SourceImage& source, const ImagePlanes& target, EngineState& state,
                   const KernelTable& kernels) {
    EnhancementPass pass(plan, source, state, kernels);
    const PassResult result = pass.Begin();
    pass.WritePlanes(target);
    return result;
}

}  // namespace clarivex
