// A stream of pictures whose planes lie anywhere, with its own part of what a process has in common: it shares nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "pipeline/frame_pipeline.h"
#include "pipeline/picture_planes.h"
#include "runtime/memory.h"

namespace clarivex {

struct KernelTable;

/// What is asked for one picture.
struct PlaneRequest {
    PictureForm source;
    bool enlarged = false;    ///< a source at least smallestWidth wide
    int32_t targetWidth = 0;  ///< up to OutputSize's; what is right of it is left out. Not enlarged: the source's
    bool lighting = true;
    bool noise = true;
    bool caption = true;
    bool liftSizeLimits = false;
    float sharpness = 1.0F;    ///< as FrameRequest's
    float pixelAspect = 1.0F;  ///< 1/64 … 64
    const KernelTable* kernels = nullptr;
};

/// One thread at a time. Any call throws what MemoryShortage throws.
class PlaneStream {
public:
    explicit PlaneStream(const KernelTable& kernels);

    /// Enhances a picture. Of the target just the picture's own samples are written, each of them; a source narrower than
    /// smallestWidth is copied. An odd last row of a picture that keeps its size is the source's.
    ///
    /// source  no byte before its first row or behind its last is read; planes overlap none of the target's
    void Process(const PlaneRequest& request, const SourcePlanes& source, const TargetPlanes& target);

private:
    /// Working memory of one length.
    class Scratch {
    public:
        uint8_t* Take(size_t wanted);

    private:
        SampleBlock block;
        size_t bytes = 0;
    };

    FrameRequest TakeRequest(const PlaneRequest& request);
    FrameLayout LayOut(const PlaneRequest& request, const SourcePlanes& source, const TargetPlanes& target);
    void ReadPlanes(const PlaneRequest& request, const SourcePlanes& source, FrameLayout& layout);
    void PlaceOutput(const PlaneRequest& request, const TargetPlanes& target, FrameLayout& layout);
    PlaneView WithPluginsNeighbours(const PlaneView& luma, const PlaneView& second);
    void SplitPairs(const PlaneRequest& request, const SourcePlanes& source, PictureView& planes);

    ProcessState process;
    FramePipeline pipeline;
    bool newStream = true;
    std::optional<float> lastSharpness;
    Scratch lumaCopy;      // of widths that are no multiple of 8
    Scratch sourceChroma;  // of pairs, as planes
    Scratch targetChroma;
};

/// Copies a picture as it is.
void CopyPicture(const PictureForm& form, const SourcePlanes& source, const TargetPlanes& target);

}  // namespace clarivex
