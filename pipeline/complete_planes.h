// Fills what the engine has not written of a picture, so that left-over memory is never shown.
#pragma once

#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

/// What the engine wrote: luma samples from the upper left, 0 for none, and whether chroma belongs to its picture too.
struct WrittenPart {
    int32_t width = 0;
    int32_t height = 0;
    bool chroma = false;
};

/// Samples outside the written part become the source's at the same place, and black where the source has none. In a
/// picture whose columns were enlarged, the few that rounding its width added repeat the last one before them, and so does
/// the spare column behind an odd width of luma.
///
/// picture  planes of the output's size, completed in place; rows of an odd width have room for one sample more
void CompletePlanes(const ImagePlanes& picture, const PictureView& source, const WrittenPart& written);

/// Puts a packed source at the upper left of a target of packed rows, over black. Sizes in samples, strides in bytes; whole
/// pairs are read and written, and nothing behind a row's last one.
void ShowPackedSource(const Plane& target, const PlaneView& source);

}  // namespace clarivex
