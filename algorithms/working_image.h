// A picture of our own with room around it, for filters that work in place and run past the last row.
#pragma once

#include "algorithms/readable_row.h"
#include "runtime/memory.h"
#include "runtime/planes.h"

namespace clarivex {

/// Three planes in one owned block laid out by LayoutPlanes. Movable; a moved-from image is empty.
class WorkingImage {
public:
    /// Gives the image a luma size of width × height samples (each 0 … 65536) with the chroma sizes that follow. The
    /// same size keeps the block and all it holds; another one gets a fresh block of zeros. Waits for memory.
    void Resize(int32_t width, int32_t height) { Resize(width, height, true); }

    /// The same with luma that has a size but no samples.
    void ResizeChroma(int32_t width, int32_t height) { Resize(width, height, false); }

    /// Views of the planes; their `owner` is null, since this object owns the block.
    const ImagePlanes& Planes() const { return planes; }

    /// End of the block.
    const uint8_t* End() const { return block.get() + blockBytes; }

private:
    void Resize(int32_t width, int32_t height, bool hasLuma);

    SampleBlock block;
    size_t blockBytes = 0;
    ImagePlanes planes;
};

/// The image as something to be read, whose luma stages may work on in place.
inline SourceImage SourceOf(const WorkingImage& image) { return {image.Planes(), image.End(), image.Planes().luma}; }

/// Gives `image` the size of the source's luma and copies all three planes by CopyPlanes. Spare rows below the picture
/// keep what they held while the size stays.
///
/// sourceEnd  end of the buffer that the source lies in, so that nothing behind it is read; null for no limit.
void PrepareWorkingImage(WorkingImage& image, const PictureView& source, const uint8_t* sourceEnd = nullptr);

}  // namespace clarivex
