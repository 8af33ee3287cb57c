#include "engine/enhancement_pass.h"

#include "algorithms/edge_sharpeners.h"
#include "engine/chroma_scalers.h"
#include "engine/detail_gains.h"
#include "engine/picture_scaler.h"
#include "engine/post_filter.h"
#include "engine/stage_plans.h"
#include "engine/strength.h"
#include "platform/tsc.h"

namespace clarivex {
namespace {

constexpr int64_t adoptAtOnce = 50000000;  // five seconds, as after a gap

/// One pass over one frame. Run tells the steps in order.
class FramePass {
public:
    FramePass(EnhancementEngine& engine, FrameRecord& frame, const SourceImage& source, const PassTarget& target,
              float& aspect, FrameInfo& info, uint32_t planeMask, const KernelTable& kernels)
        : engine(engine),
          stages(engine.stages),
          frame(frame),
          source(source),
          work(source),
          target(target),
          aspect(aspect),
          info(info),
          planeMask(planeMask),
          kernels(kernels),
          width(source.planes.luma.width),
          height(source.planes.luma.height) {}

    int32_t Run() {
        if (width <= 0 || height <= 0) return SkipEmptyFrame();
        StartFrame();
        LimitSize();
        MeasureStrength();
        RebuildFilters();
        const uint64_t startCycles = ReadTimeStamp();
        AddBaseGain();
        ReduceNoise();
        PlacePreStages();
        CopyForFusedStages();
        AnalyseLightingOnce();
        CorrectAspect();
        SetGains();
        if (bypass) return 0;
        const PostFilter filter = DesignPostFilter(engine, strength, modes.horizontal);
        const ImagePlanes out = SizeOutput();
        const bool written = Dispatch(out, filter);
        NoteTime(startCycles);
        info.noiseAmplitude += 0.75F;
        return Report(written);
    }

private:
    int32_t SkipEmptyFrame() {
        if (target.image != nullptr) target.image->Resize(0, 0);
        aspect = 1.0F;
        return 0;
    }

    void StartFrame() {
        sharpness = engine.sharpness;
        stages = StageSettings{};
    }

    /// Large pictures are scaled less, and the largest are not enhanced at all.
    void LimitSize() {
        modes = LimitModes({engine.horizontalMode, engine.verticalMode}, width, height);
        if (engine.tuningSet == 0 && int64_t{width} * height >= bypassArea && !frame.keepFullSize) {
            modes = {0, 0};
            engine.sharpness = 0.0F;
            bypass = true;
        }
        stages.bypassActive = bypass ? 1 : 0;
    }

    void MeasureStrength() { strength = StrengthOf(sharpness, width, height); }

    void RebuildFilters() {
        if (engine.filtersDirty == 0) return;
        DesignFilters(engine, strength, modes.horizontal);
        engine.filtersDirty = 0;
    }

    void AddBaseGain() {
        const double gain = engine.baseDetailGain * 0.3;
        stages.postNarrowH.baseGainLog2 = stages.postNarrowV.baseGainLog2 = static_cast<float>(gain);
    }

    void ReduceNoise() {
        const NoiseReduction reduction = SetUpNoiseReduction(engine, modes, bypass, stages);
        noiseKnee = reduction.knee;
        if (!reduction.smoothsChroma) return;
        TakePrivateCopy();
        const Plane& first = engine.workspace.privateCopy.Planes().second;
        const Plane& second = engine.workspace.privateCopy.Planes().third;
        SharpenRowsNarrow(second, reduction.smoothing);
        SharpenColumnsNarrow(first, reduction.smoothing);
        SharpenRowsNarrow(first, reduction.smoothing);
        SharpenColumnsNarrow(second, reduction.smoothing);
    }

    /// A pre-stage of the axis that is scaled first runs inside the scaler's strips; others run over the whole picture.
    void PlacePreStages() {
        const bool rowsFirst = engine.verticalFirst == 0;
        stages.fuseHorizontal = rowsFirst && modes.horizontal != 0 ? 1 : 0;
        stages.fuseVertical = !rowsFirst && modes.vertical != 0 ? 1 : 0;
        if (stages.fuseVertical == 0 && ColumnPreStageOn()) SharpenColumns();
        if (stages.fuseHorizontal == 0 && RowPreStageOn()) SharpenRows();
    }

    bool RowPreStageOn() const { return stages.preModeH != 0 || stages.gatedH != 0; }
    bool ColumnPreStageOn() const { return stages.preModeV != 0 || stages.gatedV != 0; }

    void SharpenColumns() {
        TakePrivateCopy();
        const Plane& luma = work.writableLuma;
        if (stages.preModeV == 1)
            SharpenColumnsNarrow(luma, stages.preNarrowV);
        else if (stages.preModeV == 2)
            SharpenColumnsPlain(luma, stages.preNarrowV, stages.preWideV);
        if (stages.gatedV != 0) SharpenColumnsGated(luma, stages.preNarrowV, stages.preWideV);
    }

    void SharpenRows() {
        TakePrivateCopy();
        const Plane& luma = work.writableLuma;
        if (stages.preModeH == 1)
            SharpenRowsNarrow(luma, stages.preNarrowH);
        else if (stages.preModeH == 2)
            SharpenRowsKnee(luma, stages.preNarrowH, stages.preWideH, false, RowDither::byRow, nullptr);
        if (stages.gatedH != 0) SharpenRowsGated(luma, stages.preNarrowH, stages.preWideH, RowDither::byRow);
    }

    /// A fused pre-stage works in place on its source strips, and the decoder's frame must survive.
    void CopyForFusedStages() {
        const bool rowsFused = stages.fuseHorizontal != 0 && RowPreStageOn();
        const bool columnsFused = stages.fuseVertical != 0 && ColumnPreStageOn();
        if (rowsFused || (columnsFused && modes.horizontal != 0)) TakePrivateCopy();
    }

    void TakePrivateCopy() {
        if (haveCopy) return;
        PrepareWorkingImage(engine.workspace.privateCopy, source.planes, source.end);
        work = SourceOf(engine.workspace.privateCopy);
        haveCopy = true;
    }

    /// A frame that passes twice is analysed once.
    void AnalyseLightingOnce() {
        if (engine.lightingEnabled == 0) return;
        const bool adoptNow = engine.lightingAdoptNow != 0;
        engine.lightingAdoptNow = 0;
        LightingCache& cache = frame.lightingCache;
        if (cache.valid && !adoptNow) {
            info.correction = cache.correction;
            return;
        }
        const bool outright = frame.keepFullSize || adoptNow;
        const int64_t elapsed = outright ? adoptAtOnce : frame.sampleStop - frame.sampleStart;
        if (!bypass) info.correction = AnalyseLighting(work.planes, elapsed, engine.lighting, kernels);
        cache = {true, info.correction};
    }

    void CorrectAspect() {
        constexpr float factors[3] = {1.0F, 1.5F, 2.0F};
        aspect = aspect * factors[modes.horizontal] / factors[modes.vertical];
    }

    void SetGains() {
        const DetailInputs inputs{modes, strength, noiseKnee, width, height, aspect, bypass};
        info.noiseAmplitude = SetUpDetailGains(engine, inputs, stages);
    }

    static int32_t Scaled(int32_t length, int32_t mode) {
        if (mode == 2) return 2 * length;
        return mode == 1 ? (3 * length) >> 1 : length;
    }

    bool WillWrite() const { return modes.horizontal != 0 || haveCopy || engine.sharpness != 0.0F; }

    /// Rows that are doubled on their own need some length; on both axes any picture can be doubled.
    bool WritesLuma() const { return modes.horizontal != 2 || modes.vertical == 2 || width >= shortestDoubledRow; }

    uint32_t WritablePlanes() const { return WritesLuma() ? allPlanes : allPlanes & ~lumaPlane; }

    ImagePlanes SizeOutput() {
        if (target.planes != nullptr) return *target.planes;
        if (WillWrite()) target.image->Resize(Scaled(width, modes.horizontal), Scaled(height, modes.vertical));
        return target.image->Planes();
    }

    bool Dispatch(const ImagePlanes& out, const PostFilter& filter) {
        if (!WillWrite()) return false;
        if (modes.horizontal == 0) {
            KeepSize(out, filter);
        } else if (modes.vertical == 0) {
            PictureScaler scaler = Scaler();
            scaler.ScaleHorizontal(out, work, PlanRows(engine, filter, stages.postNarrowV), filter.chromaOdd,
                                   allPlanes);
        } else if (modes.vertical == 2) {
            DoubleBothAxes(out, filter);
        } else if (engine.verticalFirst == 0) {
            ScaleRowsFirst(out, filter);
        } else {
            ScaleColumnsFirst(out, filter);
        }
        return true;
    }

    PictureScaler Scaler() {
        return {engine.workspace.scaler, kernels, engine.splitView != 0 ? &source.planes.luma : nullptr};
    }

    void KeepSize(const ImagePlanes& out, const PostFilter& filter) {
        const CopyBounds bounds{.targetEnd = nullptr, .sourceEnd = work.end};
        if ((planeMask & lumaPlane) != 0)
            EnhanceUnscaled(out, work, filter.taps, stages.postNarrowV, engine.workspace.unscaled, kernels);
        if ((planeMask & secondPlane) != 0) CopyPlane(out.second, work.planes.second, bounds);
        if ((planeMask & thirdPlane) != 0) CopyPlane(out.third, work.planes.third, bounds);
    }

    RowStages RowsOfBothAxes(const PostFilter& filter) const {
        return modes.horizontal == 2 ? PlanTwofoldRows(engine, filter) : PlanRows(engine, filter, {});
    }

    void ScaleRowsFirst(const ImagePlanes& out, const PostFilter& filter) {
        PictureScaler scaler = Scaler();
        WorkingImage& half = engine.workspace.halfScaled;
        const RowStages rowStages = RowsOfBothAxes(filter);
        const ColumnStages columnStages = PlanColumns(engine);
        const uint32_t planes = modes.horizontal == 2 ? WritablePlanes() : planeMask;
        const uint32_t chromaPlanes = planes & ~lumaPlane;
        scaler.ScaleHorizontalPlane(half, work, rowStages, filter.chromaOdd, chromaPlanes);
        if ((planes & lumaPlane) != 0) scaler.ScaleLumaBothAxes(out, half, work, rowStages, columnStages.taps);
        scaler.ScaleVertical(out, SourceOf(half), columnStages, chromaPlanes);
    }

    void ScaleColumnsFirst(const ImagePlanes& out, const PostFilter& filter) {
        PictureScaler scaler = Scaler();
        WorkingImage& half = engine.workspace.halfScaled;
        scaler.ScaleVerticalFirst(half, work, PlanColumns(engine), allPlanes);
        scaler.ScaleHorizontal(out, SourceOf(half), RowsOfBothAxes(filter), filter.chromaOdd, WritablePlanes());
    }

    void DoubleBothAxes(const ImagePlanes& out, const PostFilter& filter) {
        ScaleBothTwice(out.luma, work.planes.luma, PlanWide(engine, filter), engine.workspace.wide, kernels);
        DoubleChroma(out.second, work.planes.second, filter.chromaOdd);
        DoubleChroma(out.third, work.planes.third, filter.chromaOdd);
    }

    void DoubleChroma(const Plane& to, const PlaneView& from, bool chromaOdd) {
        const int32_t stride = (2 * from.width + 15) & ~15;
        const Plane between{engine.workspace.chroma.Prepare(stride * from.height), 2 * from.width, from.height, stride};
        DoubleChromaRows(between, from, chromaOdd, engine.workspace.scaler.chroma, kernels);
        DoubleChromaColumns(to, between, chromaOdd, kernels);
    }

    TimingClass ClassOf() const {
        if (modes.horizontal == 1 && modes.vertical == 0) return TimingClass::rowsOnly;
        if (modes.horizontal == 1 && modes.vertical == 1)
            return engine.verticalFirst == 1 ? TimingClass::columnsFirst : TimingClass::bothAxes;
        return modes.horizontal == 2 && modes.vertical == 1 ? TimingClass::twofoldRows : TimingClass::none;
    }

    void NoteTime(uint64_t startCycles) {
        engine.timing.Note(ClassOf(), width, height, static_cast<int64_t>(ReadTimeStamp() - startCycles));
    }

    int32_t Report(bool written) {
        const bool enlarged = modes.horizontal != 0;
        const bool luma = written && WritesLuma();
        info.writtenWidth = luma ? Scaled(width, modes.horizontal) : 0;
        info.writtenHeight = luma ? Scaled(height, enlarged ? modes.vertical : 0) : 0;
        return written ? 1 : 0;
    }

    EnhancementEngine& engine;
    StageSettings& stages;
    FrameRecord& frame;
    const SourceImage& source;
    SourceImage work;  // the source, or the private copy once a stage needs one
    const PassTarget& target;
    float& aspect;
    FrameInfo& info;
    uint32_t planeMask;
    const KernelTable& kernels;
    int32_t width;
    int32_t height;
    bool bypass = false;
    bool haveCopy = false;
    float sharpness = 0.0F;
    ScaleModes modes;
    Strength strength;
    double noiseKnee = 0.0;
};

}  // namespace

int32_t EnhancementPass(EnhancementEngine& engine, FrameRecord& frame, const SourceImage& source,
                        const PassTarget& target, float& aspect, FrameInfo& info, uint32_t planeMask,
                        const KernelTable& kernels) {
    return FramePass(engine, frame, source, target, aspect, info, planeMask, kernels).Run();
}

}  // namespace clarivex
