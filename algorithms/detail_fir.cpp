// Chooses the form of the post filter and runs it on strips.
#include "algorithms/detail_fir.h"

#include <algorithm>

#include "algorithms/detail_kernels.h"
#include "algorithms/row_groups.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

constexpr int32_t halfLength = 8;
constexpr int32_t groupSize = 8;

/// Taps of one side of a symmetric filter that are used, and its rounding.
struct SymmetricForm {
    int32_t firstTap;
    int32_t rounding;
};

SymmetricForm ShapeOf(DetailFirForm form) {
    switch (form) {
        case DetailFirForm::symmetric16: return {0, 7};
        case DetailFirForm::symmetric12: return {2, 7};
        default: return {4, 6};
    }
}

/// The two samples that share a tap are added first; the shift brings their sum to the top of 16 bits.
uint8_t FilterSymmetric(const uint8_t* sample, const DetailTaps& taps, const SymmetricForm& shape) {
    int32_t sum = shape.rounding;
    for (int32_t j = shape.firstTap; j < halfLength; ++j) {
        const int32_t pair = sample[j - halfLength] + sample[halfLength - 1 - j];
        sum += MulHigh(Wrap16(pair << 6), taps[static_cast<size_t>(j)]);
    }
    return SaturateSample(Wrap16(sum) >> 3);
}

void FilterRowSymmetric(uint8_t* row, int32_t groups, const DetailTaps& taps, const SymmetricForm& shape) {
    constexpr int32_t after = halfLength - 1;
    std::array<uint8_t, halfLength> left;
    std::copy_n(row, halfLength, left.begin());
    uint8_t* first = row + halfLength;
    FilterInGroups<groupSize, halfLength, after>(first, groups, left, first + groups * groupSize,
                                                 [&](const uint8_t* samples, uint8_t* group, int32_t) {
                                                     for (int32_t i = 0; i < groupSize; ++i)
                                                         group[i] = FilterSymmetric(samples + i, taps, shape);
                                                 });
}

/// The kernel reads beyond its row and must not filter in place, so each row is copied to a working row first.
void DetailFirGeneral(const Plane& strip, const DetailTaps& taps, const KernelTable& kernels,
                      const DetailFirScratch& scratch) {
    constexpr int32_t margin = 4;
    constexpr int32_t firstTap = 5;
    const int32_t groups = (strip.width - 2 * margin) >> 2;
    if (groups <= 0) return;
    for (int32_t y = 0; y < strip.height; ++y) {
        std::copy_n(strip.Row(y), strip.width, scratch.samples);
        kernels.fir7(scratch.samples, strip.Row(y), strip.width, margin, margin + 4 * groups, taps.data() + firstTap,
                     scratch.words);
    }
}

}  // namespace

DetailFirForm ChooseDetailFirForm(const DetailTaps& taps) {
    if (!std::equal(taps.begin(), taps.begin() + halfLength, taps.rbegin())) return DetailFirForm::general;
    if (taps[0] != 0 || taps[1] != 0) return DetailFirForm::symmetric16;
    if (taps[2] != 0 || taps[3] != 0) return DetailFirForm::symmetric12;
    return DetailFirForm::symmetric8;
}

void DetailFirSymmetric(const Plane& strip, const DetailTaps& taps, DetailFirForm form, int32_t evenFilterPasses) {
    const int32_t groups = (strip.width - 2 * halfLength) >> 3;
    if (groups <= 0) return;
    const int32_t passes = evenFilterPasses < 3 ? 1 : evenFilterPasses;
    for (int32_t pass = 0; pass < passes; ++pass)
        for (int32_t y = 0; y < strip.height; ++y) FilterRowSymmetric(strip.Row(y), groups, taps, ShapeOf(form));
}

void DetailFir(const Plane& strip, const DetailTaps& taps, int32_t evenFilterPasses, const KernelTable& kernels,
               const DetailFirScratch& scratch) {
    const DetailFirForm form = ChooseDetailFirForm(taps);
    if (form == DetailFirForm::general)
        DetailFirGeneral(strip, taps, kernels, scratch);
    else
        DetailFirSymmetric(strip, taps, form, evenFilterPasses);
}

}  // namespace clarivex
