#include "engine/sleeping/row_stages.h"

#include <algorithm>
#include <cstring>

#include "algorithms/sleeping/detail_strips.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

void RankRows(const Plane& strip, RankStage stage) {
    for (int32_t y = 0; y < strip.height; ++y) {
        uint8_t* row = strip.Row(y);
        for (int32_t x = 0; x + 1 < strip.width; ++x)
            row[x] = stage == RankStage::smaller ? std::min(row[x], row[x + 1]) : std::max(row[x], row[x + 1]);
    }
}

}  // namespace

void DoubleRow(const PlaneView& source, int32_t y, int32_t count, const TapSet& taps, const DoubledRow& rows,
               const KernelTable& kernels) {
    constexpr int32_t reach = 4;
    const uint8_t* row = source.Row(y);
    const int32_t width = source.width;
    std::memset(rows.copy - reach, row[0], reach);
    std::memcpy(rows.copy, row, static_cast<size_t>(width));
    std::memset(rows.copy + width, row[width - 1], static_cast<size_t>(count - width + reach));
    kernels.doubleRow(rows.copy, taps.data(), rows.out, count);
    // All taps before the row stand on its first sample, but the third is left out and the first counts twice.
    int32_t first = (2 * taps[0] + taps[1] + taps[3] + taps[4]) * row[0] + 8192;
    for (size_t k = 5; k < taps.size(); ++k) first += taps[k] * row[k - reach];
    rows.out[0] = static_cast<uint8_t>(std::clamp(first >> 14, 0, 255));
}

bool PostFilterWaits(const SleepingRowStages& stages, DetailFirForm form) {
    return stages.detailOn || (form != DetailFirForm::general && stages.evenFilterPasses >= 3);
}

void RunSleepingStages(const Plane& strip, const SleepingRowStages& stages, const DetailTaps* postTaps,
                       const KernelTable& kernels, const DetailFirScratch& scratch) {
    if (stages.detailOn) KneeDetailRows(strip, stages.detailGains, RowDither::checkerboard);
    if (postTaps != nullptr) DetailFir(strip, *postTaps, stages.evenFilterPasses, kernels, scratch);
    if (stages.boosterOn) BoostSmallSignals(strip, stages.booster);
    if (stages.rankStage != RankStage::none) RankRows(strip, stages.rankStage);
}

}  // namespace clarivex
