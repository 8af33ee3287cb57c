// Every row of the target passes all stages while the rows that it depends on are in the cache.
#include "engine/sleeping/wide_scaler.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

#include "algorithms/rounding.h"

namespace clarivex {
namespace {

constexpr int32_t tapsBefore = 4;    // taps of a phase on samples before the one that it refers to
constexpr int32_t limiterReach = 3;  // rows on either side that the edge limiter looks at
constexpr int32_t filterBefore = 8;  // taps of the post filter on samples before
constexpr int32_t filterBehind = 7;  // and on samples behind the one filtered

/// The samples of an axis that limiter and post filter work on, in groups of 8.
struct Covered {
    int32_t first = 8;
    int32_t end;

    explicit Covered(int32_t length) : end(first + 8 * std::max((length - 16) >> 3, 0)) {}
    bool Has(int32_t position) const { return position >= first && position < end; }
    int32_t Count() const { return end - first; }
};

/// One pass over a picture. Rows wait in the windows of the scratch until all that their next stage looks at is there.
class WideScaler {
public:
    WideScaler(const Plane& target, const PlaneView& source, const WideStages& stages, WideScratch& scratch,
               const KernelTable& kernels)
        : target(target),
          source(source),
          stages(stages),
          scratch(scratch),
          kernels(kernels),
          width(2 * source.width),
          height(2 * source.height),
          coveredColumns(width),
          coveredRows(height),
          padded(scratch.source.Prepare(source.width)) {
        for (WideRows* rows : {&scratch.expanded, &scratch.doubled, &scratch.limited}) rows->Prepare(width);
    }

    void Run() {
        constexpr int32_t limited = limiterReach;
        constexpr int32_t filtered = limited + filterBehind;
        for (int32_t y = 0; y < height + filtered; ++y) {
            if (y < height) ScaleColumns(y);
            if (y >= limited && y - limited < height) LimitColumns(y - limited);
            if (y >= filtered) FinishRow(y - filtered);
        }
    }

private:
    /// The source rows before endRow that are still missing, at double length in wide samples.
    void ExpandRowsTwice(int32_t endRow) {
        for (; expandedRows < std::min(endRow, source.height); ++expandedRows) {
            const uint8_t* row = source.Row(expandedRows);
            std::memset(padded - tapsBefore, row[0], tapsBefore);
            std::memcpy(padded, row, static_cast<size_t>(source.width));
            std::memset(padded + source.width, row[source.width - 1], tapsBefore);
            kernels.doubleRowWide(padded, stages.taps.a.data(), scratch.expanded.Row(expandedRows), source.width);
        }
    }

    void ScaleColumns(int32_t y) {
        const bool odd = y % 2 != 0;
        const int32_t firstRow = y / 2 - tapsBefore + (odd ? 1 : 0);
        ExpandRowsTwice(firstRow + 8);
        std::array<const int16_t*, 8> rows;
        for (int32_t k = 0; k < 8; ++k)
            rows[static_cast<size_t>(k)] = scratch.expanded.Row(std::clamp(firstRow + k, 0, source.height - 1));
        const TapSet& phase = odd ? stages.taps.b : stages.taps.a;
        kernels.doubleColumnsWide(rows.data(), phase.data(), scratch.doubled.Row(y), width);
    }

    void LimitColumns(int32_t y) {
        const WideRows& rows = scratch.doubled;
        int16_t* out = scratch.limited.Row(y);
        if (!stages.limitEdges || !coveredRows.Has(y)) {
            std::memcpy(out, rows.Row(y), WordBytes(width));
            return;
        }
        const int16_t* const window[] = {rows.Row(y), rows.Row(y - 1), rows.Row(y + 1), rows.Row(y - 3),
                                         rows.Row(y + 3)};
        kernels.limitEdgesWide(window, out, width, stages.edgeLimits);
    }

    /// The post filter down the columns, the stages along the row, and rounding.
    void FinishRow(int32_t y) {
        const int16_t* row = FilterColumns(y);
        if (stages.limitEdges) row = LimitRow(row);
        if (stages.postFilterOn) row = FilterRow(row);
        kernels.narrowRow(row, target.Row(y), width);
    }

    const int16_t* FilterColumns(int32_t y) {
        const WideRows& rows = scratch.limited;
        if (!stages.postFilterOn || !coveredRows.Has(y)) return rows.Row(y);
        std::array<const int16_t*, filterBefore + 1 + filterBehind> window;
        for (int32_t k = 0; k < 16; ++k) window[static_cast<size_t>(k)] = rows.Row(y + k - filterBefore);
        int16_t* out = scratch.rows[0].Prepare(width);
        kernels.firWide(window.data(), stages.columnTaps.data(), out, width);
        return out;
    }

    const int16_t* LimitRow(const int16_t* row) {
        int16_t* out = scratch.rows[1].Prepare(width);
        const int16_t* first = row + coveredColumns.first;
        const int16_t* const window[] = {first, first - 1, first + 1, first - 3, first + 3};
        kernels.limitEdgesWide(window, out + coveredColumns.first, coveredColumns.Count(), stages.edgeLimits);
        return CopyMargins(row, out);
    }

    const int16_t* FilterRow(const int16_t* row) {
        int16_t* out = scratch.rows[2].Prepare(width);
        std::array<const int16_t*, filterBefore + 1 + filterBehind> window;
        for (int32_t k = 0; k < 16; ++k) window[static_cast<size_t>(k)] = row + coveredColumns.first + k - filterBefore;
        kernels.firWide(window.data(), stages.rowTaps.data(), out + coveredColumns.first, coveredColumns.Count());
        return CopyMargins(row, out);
    }

    const int16_t* CopyMargins(const int16_t* row, int16_t* out) const {
        std::memcpy(out, row, WordBytes(std::min(coveredColumns.first, width)));
        const int32_t rest = std::max(width - coveredColumns.end, 0);
        std::memcpy(out + coveredColumns.end, row + coveredColumns.end, WordBytes(rest));
        return out;
    }

    static size_t WordBytes(int32_t words) { return static_cast<size_t>(words) * sizeof(int16_t); }

    Plane target;
    PlaneView source;
    const WideStages& stages;
    WideScratch& scratch;
    const KernelTable& kernels;
    int32_t width;
    int32_t height;
    Covered coveredColumns;
    Covered coveredRows;
    uint8_t* padded;
    int32_t expandedRows = 0;
};

}  // namespace

DetailTaps HalvePostTaps(const DetailTaps& taps) {
    constexpr int32_t unitGain = 8192;
    DetailTaps halved{};
    for (size_t k = 0; k < taps.size(); ++k) halved[k] = static_cast<int16_t>(RoundToNearest(0.5 * taps[k]));
    const int32_t missing = unitGain - std::accumulate(halved.begin(), halved.end(), 0);
    for (const size_t centre : {size_t{7}, size_t{8}})
        halved[centre] = static_cast<int16_t>(halved[centre] + (missing >> 1));
    return halved;
}

bool ArePaired(const DetailTaps& taps) { return ChooseDetailFirForm(taps) != DetailFirForm::general; }

void WideRows::Prepare(int32_t width) {
    constexpr int32_t unit = 32;  // words of a cache line
    // An odd number of lines, so that the rows of a window do not fall on the same few sets of the cache.
    stride = (((slackBefore + width + slackBehind) + unit - 1) & ~(unit - 1)) | unit;
    first = memory.Prepare(kept * stride);
}

void ScaleBothTwice(const Plane& target, const PlaneView& source, const WideStages& stages, WideScratch& scratch,
                    const KernelTable& kernels) {
    WideScaler(target, source, stages, scratch, kernels).Run();
}

}  // namespace clarivex
