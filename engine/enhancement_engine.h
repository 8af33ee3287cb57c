// The engine: the user's settings in the form the picture code wants them, the tuning values, and what persists from
// one frame to the next (tap sets, lighting levels, timing figures, working memory).
#pragma once

#include <array>
#include <cstdint>

#include "algorithms/filter_design.h"
#include "algorithms/lighting.h"
#include "algorithms/sharpen_params.h"
#include "engine/engine_workspace.h"
#include "engine/timing_block.h"

namespace clarivex {

/// Settings and tuning values with their start values. What nothing changes after start-up stays a field all the same:
/// a stage that is off is off by a value, and tests switch it on here.
struct EngineSettings {
    // Written by the frame driver for every frame.
    int32_t horizontalMode = 1;  ///< 0 no scaling, 1 three halves, 2 twofold
    int32_t verticalMode = 1;
    /// Strength; negative: its absolute value, whatever the picture's size. No number counts as 0, but unlike 0 it has the
    /// picture written where nothing is scaled.
    float sharpness = 0.0F;
    int32_t lightingEnabled = 1;
    uint8_t lightingAdoptNow = 1;  ///< the next frame with lighting on adopts its estimate at once
    int32_t colourBiasA = 50;      ///< picture adjustments centred on 50, for the tone curve
    int32_t colourBiasB = 50;
    int32_t colourBiasC = 50;
    float ditherGain = 0.0F;   ///< gain of the strength-dependent part of the output noise
    int32_t filtersDirty = 1;  ///< the next pass designs the tap sets anew

    // Order of passes and size rules.
    int32_t verticalFirst = 0;  ///< non-zero: a two-axis scale starts with the columns
    int32_t tuningSet = 0;      ///< tuning set of the twofold modes; 0 also arms the size bypass

    // Noise reduction and detail.
    float noiseReduction = 0.0F;  ///< 0 … 6 with fractions
    int32_t baseDetailGain = 0;   ///< added to both narrow post gains, times 0.3
    int32_t coringLevel = 0;      ///< 0 … 4: dead zone of the narrow post gains
    int32_t columnRankMode = 2;   ///< −1 and 1 end a twofold scale of the rows with a rank stage: smaller, larger
    int32_t sharpenScheme = 2;    ///< 2 and more: level tables and post filter
    int32_t curveSharpening = 0;  ///< non-zero: the strength drives the detail gains too
    int32_t evenFilterPasses = 2;
    /// Post filter without scaling, in the three-halves mode and in the twofold mode of either tuning set: 0 odd, around
    /// one sample; 1 and 2 even, between two samples, from a windowed sinc or from two equal taps.
    std::array<int32_t, 4> filterShapes{0, 0, 1, 1};
    int32_t wideDetailMode = 2;  ///< 1 keeps the wide gains of the post-scale detail stage
    int32_t edgeStageMode = 2;   ///< 0 no edge stage, 1 simple limiter, 2 and more full limiter

    // Prototype kernels.
    int32_t kernelBeta = 98;    ///< tenths
    int32_t kernelCutoff = 75;  ///< hundredths
    int32_t windowKind = 0;     ///< 0 Kaiser, 1 sinc, else none
    int32_t spectrumTrim = 0;   ///< 1 and 2 truncate the horizontal prototype

    uint8_t diffusedDetail = 0;   ///< non-zero: no detail stage runs, since its diffused form is not built
    uint8_t splitView = 0;        ///< enhance the right part of the picture only
    int32_t detailBoostA = 0;     ///< dead zone factor of the small-signal booster
    int32_t detailBoostB = 0;     ///< gain of the small-signal booster
    int32_t fusedNarrowGain = 0;  ///< tenths, three-halves mode
    int32_t fusedWideGain = 0;    ///< twentieths, three-halves mode
    int32_t forceDetailA = 0;     ///< either non-zero runs the detail set-up without noise reduction
    int32_t forceDetailB = 0;
    int32_t twofoldNarrowGain = 15;
    int32_t twofoldWideGain = 0;
    int32_t wideKneeStep15 = 15;
    int32_t wideShift15 = 126;
    int32_t wideKneeStep2x = 3;
    int32_t wideShift2x = 36;
    int32_t verticalDetailGain = 0;  ///< tenths, when the vertical axis is scaled

    // Edge limiter.
    int32_t edgeGain = 29;
    int32_t edgeDeadZone = 4;  ///< dead zone T = (edgeDeadZone · edgeGain) >> 2
    int32_t edgeMargin = 0;    ///< full limiter: limits stand this far outside, below 0 inside, the allowed range
    int32_t edgeNeighbourWeight = 64;  ///< 64ths, simple limiter
    int32_t edgeKernelSelect = 2;      ///< anything but 2 leaves the full limiter out where both axes are doubled
    int32_t wideSlopeBase = 13;        ///< full limiter: K = 64 + this
    int32_t wideSlope = 25;            ///< full limiter: Q = 32 · this
    int32_t wideOffset = 0;

    uint8_t gatedSharpen = 1;  ///< allows the gated detail kernels
    int16_t noiseStagesH = 0;  ///< noise reduction stages along rows, 0 … 3; 3 selects the gated kernel
    int16_t noiseStagesV = 0;  ///< the same down the columns

    // Tone curve.
    uint8_t toneEnabled = 1;
    uint8_t toneSuspended = 0;
    int32_t toneBlackSlope = 9;
    int32_t toneWhiteSlope = 36;
};

/// What the steps of a pass decide for the stages behind them. Cleared at the start of every pass.
struct StageSettings {
    int32_t bypassActive = 0;    ///< the picture was too large to be enhanced
    int32_t fuseHorizontal = 0;  ///< the pre-stage of this axis runs inside the scaler's strip loop
    int32_t fuseVertical = 0;
    int16_t gatedH = 0;  ///< non-zero: the gated kernel runs on this axis
    int16_t gatedV = 0;
    int16_t preModeH = 0;  ///< 0 none, 1 narrow kernel, 2 narrow and wide kernels
    int16_t preModeV = 0;
    SharpenParams postNarrowH;
    SharpenParams postNarrowV;
    SharpenParams postWide;
    SharpenParams preNarrowH;
    SharpenParams preWideH;
    SharpenParams preNarrowV;
    SharpenParams preWideV;
};

/// One for each stream. Not re-entrant: runs on the stream's frame thread.
class EnhancementEngine : public EngineSettings {
public:
    LightingState lighting;
    StageSettings stages;
    ThreeHalvesTaps tapsHorizontal;
    ThreeHalvesTaps tapsVertical;
    std::array<PrototypeKernel, 2> responses{};
    TimingBlock timing;
    EngineWorkspace workspace;
};

}  // namespace clarivex
