// What holds for the pictures of all films, whatever reads them: which cannot be enhanced, and how the others are brought to
// what can be, in the words of FFmpeg's filters.
#pragma once

#include <cstdint>
#include <string>

#include "host/picture.h"

namespace clarivex {

/// Throws RunError for transfers of high dynamic range, given as a code point of ITU-T H.273, with a command that maps the
/// film of this path; `quote` is what a shell wants around it.
void RefuseHighDynamicRange(int32_t transfer, const std::string& path, char quote);

/// Throws RunError for pictures that are too large or too small.
void CheckPictureSize(PictureSize size);

/// What the filter "scale" calls a matrix of luma and colour differences, given as a code point of ITU-T H.273. It knows
/// no numbers, and takes BT.601 for what it does not know.
const char* ScaleMatrixName(int32_t matrix);

inline constexpr const char* deinterlaceFilter = "bwdif=mode=send_frame:parity=auto:deint=interlaced";
inline constexpr const char* deinterlaceNote = "interlaced pictures are deinterlaced (--deinterlace off leaves them)";

/// The filter that brings pictures to a size and, from full range where that is theirs, to video range.
std::string ScaleFilter(PictureSize size, bool fromFullRange);

}  // namespace clarivex
