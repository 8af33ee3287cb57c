#include "algorithms/unscaled.h"

#include <algorithm>
#include <cstring>

namespace clarivex {
namespace {

constexpr int32_t groupSize = 4;
constexpr int32_t firstFiltered = 4;
constexpr int32_t readAhead = 4;  // columns right of the width that the last groups look at

bool IsSingleTap(const DetailTaps& taps) {
    return std::all_of(taps.begin() + 4, taps.begin() + 8, [](int16_t tap) { return tap == 0; }) &&
           std::all_of(taps.begin() + 9, taps.begin() + 12, [](int16_t tap) { return tap == 0; });
}

int16_t GainOf(const SharpenParams& column) {
    const SharpenCoefficients coefficients = DeriveNarrowCoefficients(column);
    return static_cast<int16_t>(coefficients.narrowBase + coefficients.narrowExtra);
}

}  // namespace

UnscaledWalk::UnscaledWalk(const SourcePlane& source, const DetailTaps& taps, const SharpenParams& column,
                           UnscaledScratch& scratch, const KernelTable& kernels)
    : source(source),
      kernels(kernels),
      columns(ColumnsOf(source.plane.width)),
      filter(ChooseFilter(taps, kernels)),
      gain(GainOf(column)),
      copies(IsSingleTap(taps) && !IsSharpenActive(column)),
      sharpened(scratch.sharpened.Prepare(columns.read)),
      words(scratch.words.Prepare(columns.read)) {
    for (size_t i = 0; i < 3; ++i) rowCopies[i] = scratch.rowCopies[i].Prepare(columns.read);
}

UnscaledWalk::Columns UnscaledWalk::ColumnsOf(int32_t width) {
    return {width + readAhead, firstFiltered + groupSize * ((width - 5) >> 2), (width + 1) & ~1};
}

UnscaledWalk::RowFilter UnscaledWalk::ChooseFilter(const DetailTaps& taps, const KernelTable& kernels) {
    if (taps[4] != 0 || taps[5] != 0 || taps[11] != 0) return {kernels.fir8, taps, 4};
    return {kernels.fir5, taps, 6};
}

bool UnscaledWalk::WritesRows() const { return copies || columns.end > firstFiltered; }

void UnscaledWalk::MakeRow(int32_t y, uint8_t* out) const {
    if (copies || y == 0 || y == source.plane.height - 1) {
        std::memcpy(out, SourceRow(y), static_cast<size_t>(columns.stored));
        return;
    }
    kernels.sharpenColumns(SourceRow(y - 1), SourceRow(y), SourceRow(y + 1), sharpened, columns.read, gain);
    filter.run(sharpened, out, {columns.stored, firstFiltered, columns.end}, &filter.taps[filter.firstTap], words);
    RaiseLastGroup(sharpened, out);
}

const uint8_t* UnscaledWalk::SourceRow(int32_t y) const {
    return ReadableRow(source, y, columns.read, rowCopies[y % 3]);
}

/// The last group comes back from its centred form, which has no place for its lower half's neighbour: 128 … 254 rise.
void UnscaledWalk::RaiseLastGroup(const uint8_t* sharpenedRow, uint8_t* out) const {
    for (int32_t x = columns.end; x < columns.stored; ++x)
        out[x] = static_cast<uint8_t>(sharpenedRow[x] + (sharpenedRow[x] >= 128 && sharpenedRow[x] < 255 ? 1 : 0));
}

}  // namespace clarivex
