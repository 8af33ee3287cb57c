// What a context is: one stream with its part of what the plug-in has for its process, so that it shares nothing.
#pragma once

#include <clarivex/clarivex.h>

#include <memory>

#include "library/planes.h"
#include "library/settings.h"
#include "pipeline/frame_pipeline.h"
#include "runtime/memory.h"

namespace clarivex {

/// One stream of pictures. One thread at a time. Any call throws what MemoryShortage throws.
class Stream {
public:
    Stream(const PictureKind& kind, const SettledSettings& settings);

    /// Other settings from the next picture on.
    void Use(const SettledSettings& wanted);

    const PictureKind& Source() const { return kind; }
    PictureKind Target() const { return {TargetSize(kind.size, settings), kind.format}; }

    /// Enhances a picture. The planes have passed CheckPlanes.
    void Process(const cvx_source& source, const cvx_target& target);

    /// Begins anew, as if just made. Nothing has changed when it throws.
    void Restart();

private:
    /// What a process has in common, and the frame path bound to it.
    struct Path {
        explicit Path(const SettledSettings& settings);

        ProcessState process;
        FramePipeline pipeline;
        bool newStream = true;
        bool settingsDirty = false;
    };

    bool HasPairs() const { return kind.format == CVX_FORMAT_NV12; }
    FrameRequest NextRequest() const;
    FrameLayout LayOut(const cvx_source& source, const cvx_target& target);
    void ReadPlanes(const cvx_source& source, FrameLayout& layout);
    void PlaceOutput(const cvx_target& target, FrameLayout& layout);
    PlaneView WithPluginsNeighbours(const PlaneView& luma, const PlaneView& second);
    void SplitPairs(const cvx_source& source, PictureView& planes);
    void JoinPairs(const ImagePlanes& planes, const cvx_target& target) const;
    void CopyOddRow(const cvx_source& source, const cvx_target& target) const;

    PictureKind kind;
    SettledSettings settings;
    std::unique_ptr<Path> path;
    SampleBlock lumaCopy;      // of widths that are no multiple of 8
    SampleBlock sourceChroma;  // of pairs, as planes
    SampleBlock targetChroma;
    size_t targetChromaBytes = 0;
};

}  // namespace clarivex
