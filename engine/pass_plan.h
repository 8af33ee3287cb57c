// What a pass is going to do with a frame, decided before any sample is touched.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "algorithms/lighting.h"
#include "engine/column_scaler.h"
#include "engine/engine_settings.h"
#include "engine/filter_plan.h"
#include "engine/picture_scaler.h"
#include "engine/post_filter.h"
#include "engine/row_scaler.h"
#include "engine/sleeping/noise_reduction.h"
#include "engine/sleeping/wide_scaler.h"
#include "engine/timing_block.h"

namespace clarivex {

/// What a frame asks of the pass besides the settings.
struct PassRequest {
    uint32_t planes = allPlanes;    ///< planes wanted; see PassPlan::planes
    bool keepFullSize = false;      ///< enhance pictures of any size
    float pixelAspect = 1.0F;       ///< of the source
    int64_t duration = 416666;      ///< since the frame before, in ticks of 100 ns
    bool lightingAdoptNow = false;  ///< take the frame's levels outright, with lighting on
    /// What an earlier pass of the same frame gave, so that its levels are not followed twice.
    std::optional<LightingCorrection> correction;
};

/// The way that a picture takes.
enum class PassKind {
    empty,         ///< no samples
    bypass,        ///< too large to be enhanced
    untouched,     ///< neither scaling nor strength: the source is the result
    keptSize,      ///< enhanced at its own size
    rowsOnly,      ///< enlarged along the rows
    rowsFirst,     ///< enlarged on both axes, luma strip by strip, rows leading
    columnsFirst,  ///< enlarged on both axes, columns leading
    doubled        ///< both axes twofold
};

/// Whether and how the levels of the frame are looked for.
struct LightingPlan {
    bool analysed = false;
    int64_t elapsed = 0;            ///< since the frame analysed before, in ticks of 100 ns
    LightingCorrection correction;  ///< without analysis: what comes out
};

/// Plain values; the same settings, size and request give the same plan.
struct PassPlan {
    PassKind kind = PassKind::empty;
    FrameSize source;
    ScaleModes modes;  ///< after the limits of size
    Strength strength;
    FilterPlan filters;  ///< for frames whose taps are designed anew
    LightingPlan lighting;
    float aspect = 1.0F;          ///< pixel aspect of the result
    float noiseAmplitude = 0.0F;  ///< of the output noise

    // In front of the scaler, over the whole picture.
    bool copiesSource = false;  ///< some stage works in place
    bool smoothsChroma = false;
    SharpenParams chroma;
    PreStageGains wholeRows;
    PreStageGains wholeColumns;

    // The scaler's stages; their taps are those of the state.
    PostFilter postFilter;
    RowStages rows;
    ColumnStages columns;
    WideStages wide;
    SharpenParams unscaledColumns;  ///< vertical gain of a picture that keeps its size
    bool splitView = false;

    FrameSize between;  ///< picture between the passes of both axes
    FrameSize target;
    /// Planes that get written: those wanted where both axes are scaled by three halves, rows leading, or none is scaled, all
    /// of them otherwise. Luma too narrow to be doubled along its rows alone is not.
    uint32_t planes = 0;
    FrameSize written;  ///< luma samples from the upper left that are written, 0 × 0 for none
    TimingClass timing = TimingClass::none;

    bool Writes() const { return kind > PassKind::untouched; }

    /// Whether a sink can take what luma is written, each row being final when the next one is begun.
    bool GivesRows() const {
        return !Writes() || kind == PassKind::keptSize || (kind == PassKind::rowsFirst && !splitView);
    }
};

/// size  of the source's luma; without samples the plan is empty
PassPlan MakePassPlan(const EngineSettings& settings, const FrameSize& size, const PassRequest& request);

/// The plan in words, a line for each stage that runs, in the order of the pass. For people and tests.
std::string TellPlan(const PassPlan& plan);

}  // namespace clarivex
