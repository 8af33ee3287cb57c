// The post filter: a short filter along rows whose form follows from its sixteen taps.
#pragma once

#include <array>
#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

struct KernelTable;

/// Tap k weighs the sample at x + k − 8. Unit gain is a sum of 8160 in the general form and 8192 in the symmetric ones.
using DetailTaps = std::array<int16_t, 16>;

enum class DetailFirForm { general, symmetric16, symmetric12, symmetric8 };

/// Symmetric are taps with taps[k] = taps[15 − k] for all k; their length is told by the outermost ones.
DetailFirForm ChooseDetailFirForm(const DetailTaps& taps);

/// The filter from a slack row to another, `columns` of them. The general form covers 4-sample groups from column 4,
/// (width − 8) >> 2 of them, the symmetric ones 8-sample groups from column 8, (width − 16) >> 3 of them; the rest is
/// copied.
///
/// words  slack row of `columns` words, for the general form.
void DetailFirRow(const uint8_t* in, uint8_t* out, int32_t columns, int32_t width, const DetailTaps& taps,
                  DetailFirForm form, const KernelTable& kernels, int16_t* words);

/// Working rows of DetailFir: slack rows of the strip's width.
struct DetailFirScratch {
    uint8_t* samples = nullptr;
    int16_t* words = nullptr;
};

/// Filters a strip in place in the form that the taps ask for.
///
/// evenFilterPasses  from 3 on the number of passes of a symmetric form; else one pass runs.
void DetailFir(const Plane& strip, const DetailTaps& taps, int32_t evenFilterPasses, const KernelTable& kernels,
               const DetailFirScratch& scratch);

}  // namespace clarivex
