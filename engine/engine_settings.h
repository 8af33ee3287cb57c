// What the engine can be set to: values only, grouped by what they belong to, with the values that the plug-in runs with.
// What nothing changes after start-up stays a field all the same: a stage that is off is off by a value here.
#pragma once

#include <array>
#include <cstdint>

#include "algorithms/filter_design.h"
#include "engine/scale_modes.h"
#include "engine/stage_kinds.h"

namespace clarivex {

/// What a frame brings.
struct FrameSettings {
    AxisScale horizontalMode = AxisScale::threeHalves;  ///< along the rows
    AxisScale verticalMode = AxisScale::threeHalves;    ///< down the columns
    /// Strength, 0 … 8.9999 in use. Negative: its absolute value, whatever the picture's size. No number counts as 0, but
    /// unlike 0 it has the picture written where nothing is scaled.
    float sharpness = 0.0F;
    bool lightingEnabled = true;
    float ditherGain = 0.0F;  ///< gain of the strength-dependent part of the output noise
};

/// How many entries of a prototype kernel's table are kept before its taps are sampled.
enum class SpectrumTrim : int32_t { none = 0, toFive = 1, toFour = 2 };

/// The kernels that the taps of the resamplers are sampled from.
struct PrototypeSettings {
    int32_t kernelBeta = 98;    ///< shape of the Kaiser window, tenths
    int32_t kernelCutoff = 75;  ///< low-pass cut-off as a fraction of Nyquist, hundredths; at least half of one in use
    WindowKind windowKind = WindowKind::kaiser;
    SpectrumTrim spectrumTrim = SpectrumTrim::none;  ///< of the kernel of the rows
};

/// The limiter that keeps edges from overshooting, along rows that have been enlarged.
struct EdgeSettings {
    EdgeStage edgeStageMode = EdgeStage::full;
    int32_t edgeGain = 29;     ///< of the second difference, 32nds
    int32_t edgeDeadZone = 4;  ///< dead zone = (edgeDeadZone · edgeGain) >> 2, in products of the gain
    int32_t edgeMargin = 0;    ///< full limiter: limits stand this many levels outside, below 0 inside, their range
    int32_t edgeNeighbourWeight = 64;  ///< simple limiter: how far limits reach towards the neighbours, 64ths
    bool edgeKernelSelect = true;      ///< false leaves the full limiter out where both axes are doubled
    // The full limiter's range, which the samples three places away widen.
    int32_t wideSlopeBase = 13;  ///< weight of these samples: 64 + this, 64ths
    int32_t wideSlope = 25;      ///< how fast the range widens, 32 times this
    int32_t wideOffset = 0;      ///< levels added to the range
};

/// Where strength becomes sharpness: in the taps of level tables and post filter, or in the gains of the detail stages.
enum class SharpenScheme : int32_t { detailGains = 1, levelTables = 2 };

/// How the wide gains of the detail stage behind the scaler apply.
enum class WideDetail : int32_t {
    aboveKnee = 1,  ///< as they were worked out: less below the knee than above it
    fromZero = 2    ///< folded: the whole gain from zero on. Only so do detail stage and booster fit together.
};

/// What sharpens behind the scaler. Numbers count what their comment says in log2 of a gain, unless it names another unit.
struct DetailSettings {
    SharpenScheme sharpenScheme = SharpenScheme::levelTables;
    bool curveSharpening = false;  ///< the strength drives the detail gains too
    /// Post filter without scaling, with rows of three halves, and with twofold rows of either tuning set.
    std::array<FilterShape, 4> filterShapes{FilterShape::odd, FilterShape::odd, FilterShape::evenSinc,
                                            FilterShape::evenSinc};
    int32_t evenFilterPasses = 2;  ///< from 3 on how often an even post filter runs; once below
    WideDetail wideDetailMode = WideDetail::fromZero;
    bool diffusedDetail = false;                 ///< no detail stage runs: there is no diffused one
    RankStage columnRankMode = RankStage::none;  ///< closes a twofold scale of the rows; it works along the rows too
    int32_t baseDetailGain = 0;                  ///< three tenths, added to both narrow gains
    int32_t coringLevel = 0;   ///< not 0: narrow gains begin above a dead zone, the same at every level
    int32_t detailBoostA = 0;  ///< booster of small signals: its dead zone, in multiples of the gain
    int32_t detailBoostB = 0;  ///< and its gain, quarters
    // Fixed gains of rows enlarged by three halves (fused…, …15) and of twofold rows (twofold…, …2x).
    int32_t fusedNarrowGain = 0;     ///< tenths
    int32_t fusedWideGain = 0;       ///< twentieths
    int32_t twofoldNarrowGain = 15;  ///< tenths
    int32_t twofoldWideGain = 0;     ///< twentieths
    int32_t wideKneeStep15 = 15;     ///< knee of the wide gain, in kernel output units
    int32_t wideShift15 = 126;       ///< twentieths moved from above the knee of the wide gain to below it
    int32_t wideKneeStep2x = 3;      ///< the same for twofold rows
    int32_t wideShift2x = 36;
    int32_t verticalDetailGain = 0;  ///< tenths, for columns that are enlarged
};

/// Smoothing in front of the scaler, and the kernels that do it.
struct NoiseReductionSettings {
    float noiseReduction = 0.0F;  ///< level, 0 … 6 with fractions
    int32_t noiseStagesH = 0;     ///< stages along the rows, 0 … 3: none, narrow, narrow and wide, gated
    int32_t noiseStagesV = 0;     ///< the same down the columns
    bool gatedSharpen = true;     ///< allows the gated kernels
    bool forceDetailA = false;    ///< either of them sets the stages up with rows of three halves at level 0 too
    bool forceDetailB = false;
};

/// What the tone curve follows from. The biases are centred on 50; switched off or suspended, all count as 50.
struct ToneSettings {
    bool toneEnabled = true;
    bool toneSuspended = false;
    int32_t colourBiasA = 50;     ///< contrast: below 50 it lowers the white end
    int32_t colourBiasB = 50;     ///< brightness: above 50 it raises the black end
    int32_t colourBiasC = 50;     ///< saturation
    int32_t toneBlackSlope = 9;   ///< hundredths added to the curve's slope of 1 at black, with lighting on
    int32_t toneWhiteSlope = 36;  ///< the same at white
};

/// Values for rows that are doubled.
enum class TuningSet : int32_t { first = 0, second = 1 };

/// Order of the passes, and which pictures they are for.
struct OrderSettings {
    bool verticalFirst = false;              ///< a scale of both axes starts with the columns
    TuningSet tuningSet = TuningSet::first;  ///< the first one also leaves out pictures from bypassArea on
    bool liftSizeLimits = false;             ///< scale and enhance pictures of every size
    bool splitView = false;                  ///< enhance the right part of the picture only
};

struct EngineSettings {
    FrameSettings frame;
    PrototypeSettings prototype;
    EdgeSettings edges;
    DetailSettings detail;
    NoiseReductionSettings noise;
    ToneSettings tone;
    OrderSettings order;
};

}  // namespace clarivex
