#include "algorithms/detail_fir.h"

#include <algorithm>

#include "simd/kernel_table.h"

namespace clarivex {

DetailFirForm ChooseDetailFirForm(const DetailTaps& taps) {
    if (!std::equal(taps.begin(), taps.begin() + 8, taps.rbegin())) return DetailFirForm::general;
    if (taps[0] != 0 || taps[1] != 0) return DetailFirForm::symmetric16;
    if (taps[2] != 0 || taps[3] != 0) return DetailFirForm::symmetric12;
    return DetailFirForm::symmetric8;
}

FirSpan GeneralFirSpan(const FirRowLength& row) {
    constexpr int32_t first = 4;
    return {row.columns, first, first + 4 * std::max((row.width - 2 * first) >> 2, 0)};
}

void DetailFirRow(const uint8_t* in, uint8_t* out, const FirRowLength& row, const DetailFirFilter& filter,
                  int16_t* words, const KernelTable& kernels) {
    if (filter.form == DetailFirForm::general) {
        kernels.fir7(in, out, GeneralFirSpan(row), filter.GeneralTaps(), words);
    } else {
        constexpr int32_t first = 8;
        const int32_t groups = std::max((row.width - 2 * first) >> 3, 0);
        const int32_t rounding = filter.form == DetailFirForm::symmetric8 ? 6 : 7;
        kernels.firEven(in, out, {row.columns, first, first + 8 * groups}, filter.taps.data(), rounding);
    }
}

}  // namespace clarivex
