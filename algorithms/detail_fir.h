// The post filter: a short filter along rows whose form follows from its sixteen taps.
#pragma once

#include <array>
#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

struct FirSpan;
struct KernelTable;

/// Tap k weighs the sample at x + k − 8. Unit gain is a sum of 8160 in the general form and 8192 in the symmetric ones.
using DetailTaps = std::array<int16_t, 16>;

enum class DetailFirForm { general, symmetric16, symmetric12, symmetric8 };

/// Symmetric are taps with taps[k] = taps[15 − k] for all k; their length is told by the outermost ones.
DetailFirForm ChooseDetailFirForm(const DetailTaps& taps);

/// Taps and the form that they ask for.
struct DetailFirFilter {
    explicit DetailFirFilter(const DetailTaps& filterTaps) : taps(filterTaps), form(ChooseDetailFirForm(filterTaps)) {}

    /// The seven taps of the general form, and the middle one with those on its right.
    const int16_t* GeneralTaps() const { return &taps[5]; }
    const int16_t* RightTaps() const { return &taps[8]; }

    /// Whether the seven taps of the general form are the same on both sides.
    bool HasEqualSides() const { return taps[5] == taps[11] && taps[6] == taps[10] && taps[7] == taps[9]; }

    DetailTaps taps;
    DetailFirForm form;
};

/// Columns of a row that are made, and how many of them are its width.
struct FirRowLength {
    int32_t columns;
    int32_t width;
};

/// The columns that the general form makes.
FirSpan GeneralFirSpan(const FirRowLength& row);

/// The filter from a slack row to another, `columns` of them. The general form covers 4-sample groups from column 4,
/// (width − 8) >> 2 of them, the symmetric ones 8-sample groups from column 8, (width − 16) >> 3 of them; the rest is
/// copied.
///
/// words  slack row of `columns` words, for the general form.
void DetailFirRow(const uint8_t* in, uint8_t* out, const FirRowLength& row, const DetailFirFilter& filter,
                  int16_t* words, const KernelTable& kernels);

}  // namespace clarivex
