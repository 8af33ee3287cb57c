// Stages along enlarged rows that the plug-in never switches on, and rows of double length.
#pragma once

#include "algorithms/filter_design.h"
#include "algorithms/sleeping/strip_fir.h"
#include "engine/sleeping/detail_stages.h"
#include "engine/sleeping/pre_stages.h"
#include "engine/stage_kinds.h"

namespace clarivex {

/// What of a row scaler sleeps.
struct SleepingRowStages {
    PreStage preStage;          ///< works in place on the source, which then has to be writable
    TwofoldTaps twofoldTaps;    ///< for rows of double length
    SimpleLimits simpleLimits;  ///< of the simple edge limiter
    bool detailOn = false;
    SharpenCoefficients detailGains;
    int32_t evenFilterPasses = 2;  ///< of an even post filter: from 3 on how often it runs; once below
    bool boosterOn = false;
    BoosterGains booster;
    RankStage rankStage = RankStage::none;
};

/// The shortest row that has a twofold form.
constexpr int32_t shortestDoubledRow = 9;

/// Slack rows for a row of double length: the source's samples, and twice as many.
struct DoubledRow {
    uint8_t* copy;
    uint8_t* out;
};

/// Row y at double length. In the first output the first tap counts twice and the third not at all.
///
/// count  samples to double, at least the source's width: the last one is repeated
void DoubleRow(const PlaneView& source, int32_t y, int32_t count, const TapSet& taps, const DoubledRow& rows,
               const KernelTable& kernels);

/// Whether a post filter has to wait until all rows of a strip are there: a detail stage stands before it, or it runs more
/// than once.
bool PostFilterWaits(const SleepingRowStages& stages, DetailFirForm form);

/// What runs on a strip behind the rows' own stages: detail, the post filter that waited, booster, rank.
///
/// postTaps  of a post filter that waited; null for none
void RunSleepingStages(const Plane& strip, const SleepingRowStages& stages, const DetailTaps* postTaps,
                       const KernelTable& kernels, const DetailFirScratch& scratch);

}  // namespace clarivex
