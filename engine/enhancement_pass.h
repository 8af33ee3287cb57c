// The one way into the engine: a decoded frame goes in, an enhanced one comes out.
#pragma once

#include "engine/engine_state.h"
#include "engine/pass_plan.h"
#include "engine/row_sink.h"

namespace clarivex {

/// What a pass comes to.
struct PassResult {
    bool planesWritten = false;     ///< false: the caller is to use the source as it stands
    FrameSize written;              ///< luma samples from the upper left that are written, 0 × 0 for none
    float aspect = 1.0F;            ///< pixel aspect of the result
    float noiseAmplitude = 0.0F;    ///< of the output noise
    LightingCorrection correction;  ///< linear, of the frame's levels
};

/// Does to one frame what its plan says: Begin, then one of the others. Not re-entrant for one state; different states run
/// at once. All throw what MemoryShortage throws; taps and levels are then those of the frame, the target is undefined.
class EnhancementPass {
public:
    /// source  4:2:0 planes of the size that the plan was made for. Strides at least the width; see SourceImage for `end`.
    /// All has to outlive the pass.
    EnhancementPass(const PassPlan& plan, const SourceImage& source, EngineState& state, const KernelTable& kernels)
        : plan(plan), source(source), work(source), state(state), kernels(kernels) {}

    /// Designs taps when they are dirty, smooths a copy of the source where the plan says so, and follows the lighting:
    /// all that a caller has to know before rows come.
    PassResult Begin();

    /// target  planes of at least plan.target, strides a multiple of 64 (luma) and 32 (chroma) samples, 16 spare rows; only
    ///         plan.planes are written. Not looked at when the plan writes nothing. Must not overlap the source.
    void WritePlanes(const ImagePlanes& target);

    /// Writes chroma as WritePlanes does, then gives luma to the sink, a few rows at a time. For plans that give rows.
    ///
    /// chroma  as the target of WritePlanes; its luma needs no samples
    void GiveRows(const ImagePlanes& chroma, RowSink& sink);

private:
    void RenewTaps();
    void SmoothSource();
    LightingCorrection FollowLighting();
    void Run(const ImagePlanes& target, RowSink* sink);
    void KeepSize(const ImagePlanes& target, RowSink* sink);
    void KeepLuma(const Plane& target, RowSink* sink);
    PictureScaler Scaler() const;
    RowStages Rows() const;
    ColumnStages Columns() const;
    void ScaleRowsOnly(const ImagePlanes& target);
    void ScaleRowsFirst(const ImagePlanes& target, RowSink* sink);
    void ScaleChroma(const ImagePlanes& target);
    void ScaleTwofoldChroma(const ImagePlanes& target, const RowStages& rows, const ColumnStages& columns);
    void ScaleColumnsFirst(const ImagePlanes& target);
    void DoubleBothAxes(const ImagePlanes& target);
    void DoubleChroma(const Plane& to, const PlaneView& from);
    void NoteTime();

    const PassPlan& plan;
    const SourceImage& source;
    SourceImage work;  // the source, or its copy once a stage works in place
    EngineState& state;
    const KernelTable& kernels;
    uint64_t startCycles = 0;
};

/// A whole pass into planes.
PassResult RunPass(const PassPlan& plan, const SourceImage& source, const ImagePlanes& target, EngineState& state,
                   const KernelTable& kernels);

}  // namespace clarivex
