// Chooses the form of the post filter and runs it on rows and strips.
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

void DetailFirRow(const uint8_t* in, uint8_t* out, int32_t columns, int32_t width, const DetailTaps& taps,
                  DetailFirForm form, const KernelTable& kernels, int16_t* words) {
    if (form == DetailFirForm::general) {
        constexpr int32_t first = 4;
        constexpr int32_t firstTap = 5;
        const int32_t groups = std::max((width - 2 * first) >> 2, 0);
        kernels.fir7(in, out, {columns, first, first + 4 * groups}, &taps[firstTap], words);
    } else {
        constexpr int32_t first = 8;
        const int32_t groups = std::max((width - 2 * first) >> 3, 0);
        const int32_t rounding = form == DetailFirForm::symmetric8 ? 6 : 7;
        kernels.firEven(in, out, {columns, first, first + 8 * groups}, taps.data(), rounding);
    }
}

void DetailFir(const Plane& strip, const DetailTaps& taps, int32_t evenFilterPasses, const KernelTable& kernels,
               const DetailFirScratch& scratch) {
    const DetailFirForm form = ChooseDetailFirForm(taps);
    const int32_t passes = form == DetailFirForm::general || evenFilterPasses < 3 ? 1 : evenFilterPasses;
    for (int32_t y = 0; y < strip.height; ++y)
        for (int32_t pass = 0; pass < passes; ++pass) {
            // The kernels read beyond their row and must not filter in place.
            std::copy_n(strip.Row(y), strip.width, scratch.samples);
            DetailFirRow(scratch.samples, strip.Row(y), strip.width, strip.width, taps, form, kernels, scratch.words);
        }
}

}  // namespace clarivex
