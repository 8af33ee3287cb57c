#include "algorithms/sleeping/strip_fir.h"

#include <algorithm>

namespace clarivex {

void DetailFir(const Plane& strip, const DetailTaps& taps, int32_t evenFilterPasses, const KernelTable& kernels,
               const DetailFirScratch& scratch) {
    const DetailFirFilter filter(taps);
    const int32_t passes = filter.form == DetailFirForm::general || evenFilterPasses < 3 ? 1 : evenFilterPasses;
    for (int32_t y = 0; y < strip.height; ++y)
        for (int32_t pass = 0; pass < passes; ++pass) {
            // The kernels read beyond their row and must not filter in place.
            std::copy_n(strip.Row(y), strip.width, scratch.samples);
            DetailFirRow(scratch.samples, strip.Row(y), {strip.width, strip.width}, filter, scratch.words, kernels);
        }
}

}  // namespace clarivex
