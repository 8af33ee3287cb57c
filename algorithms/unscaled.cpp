#include "algorithms/unscaled.h"

#include <algorithm>
#include <cstring>

namespace clarivex {
namespace {

constexpr int32_t groupSize = 4;
constexpr int32_t firstFiltered = 4;
constexpr int32_t readAhead = 4;  // columns right of the width that the last groups look at

/// Columns of the walk: filtered up to `end`, stored up to `stored`.
struct Columns {
    int32_t read;
    int32_t end;
    int32_t stored;
};

Columns ColumnsOf(int32_t width) {
    return {width + readAhead, firstFiltered + groupSize * ((width - 5) >> 2), (width + 1) & ~1};
}

/// A filter of eight taps, or of five where only the inner ones are set: the others would add nothing.
struct RowFilter {
    KernelTable::FirRow run;
    const int16_t* taps;
};

RowFilter ChooseFilter(const DetailTaps& taps, const KernelTable& kernels) {
    if (taps[4] != 0 || taps[5] != 0 || taps[11] != 0) return {kernels.fir8, &taps[4]};
    return {kernels.fir5, &taps[6]};
}

bool IsSingleTap(const DetailTaps& taps) {
    return std::all_of(taps.begin() + 4, taps.begin() + 8, [](int16_t tap) { return tap == 0; }) &&
           std::all_of(taps.begin() + 9, taps.begin() + 12, [](int16_t tap) { return tap == 0; });
}

/// The last group comes back from its centred form, which has no place for its lower half's neighbour: 128 … 254 rise.
void RaiseLastGroup(const uint8_t* sharpened, uint8_t* out, const Columns& columns) {
    for (int32_t x = columns.end; x < columns.stored; ++x)
        out[x] = static_cast<uint8_t>(sharpened[x] + (sharpened[x] >= 128 && sharpened[x] < 255 ? 1 : 0));
}

}  // namespace

void EnhanceUnscaled(const ImagePlanes& target, const SourceImage& source, const DetailTaps& taps,
                     const SharpenParams& column, UnscaledScratch& scratch, const KernelTable& kernels) {
    const bool sharpening = IsSharpenActive(column);
    if (IsSingleTap(taps) && !sharpening) {
        CopyPlane(target.luma, source.planes.luma, {.targetEnd = nullptr, .sourceEnd = source.end});
        return;
    }
    const PlaneView& luma = source.planes.luma;
    const Columns columns = ColumnsOf(luma.width);
    if (columns.end <= firstFiltered) return;
    const RowFilter filter = ChooseFilter(taps, kernels);
    const SharpenCoefficients coefficients = DeriveNarrowCoefficients(column);
    const auto gain = static_cast<int16_t>(coefficients.narrowBase + coefficients.narrowExtra);
    uint8_t* sharpened = scratch.sharpened.Prepare(columns.read);
    int16_t* words = scratch.words.Prepare(columns.read);
    const auto row = [&](int32_t y) {
        return ReadableRow(source.Luma(), y, columns.read, scratch.rowCopies[y % 3].Prepare(columns.read));
    };
    for (const int32_t y : {0, luma.height - 1})
        std::memcpy(target.luma.Row(y), row(y), static_cast<size_t>(columns.stored));
    for (int32_t y = 1; y <= luma.height - 2; ++y) {
        kernels.sharpenColumns(row(y - 1), row(y), row(y + 1), sharpened, columns.read, gain);
        uint8_t* out = target.luma.Row(y);
        filter.run(sharpened, out, {columns.stored, firstFiltered, columns.end}, filter.taps, words);
        RaiseLastGroup(sharpened, out, columns);
    }
}

}  // namespace clarivex
