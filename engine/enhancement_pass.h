// The one way into the engine: a decoded frame goes in, an enhanced one comes out.
#pragma once

#include <cstdint>

#include "engine/enhancement_engine.h"

namespace clarivex {

/// The lighting correction of a frame, kept while the frame may pass again.
struct LightingCache {
    bool valid = false;
    LightingCorrection correction;
};

/// What the pass is told of a frame. Times are in ticks of 100 ns.
struct FrameRecord {
    int64_t sampleStart = 0;
    int64_t sampleStop = 416666;
    bool keepFullSize = false;  ///< enhance pictures of any size
    LightingCache lightingCache;
};

/// What the pass reports of a frame.
///
/// writtenWidth, writtenHeight  luma samples that the stages wrote, 0 when they wrote none. Smaller than the target where
///                              the picture was too large to be scaled on both axes.
struct FrameInfo {
    LightingCorrection correction;
    float noiseAmplitude = 0.0F;
    int32_t writtenWidth = 0;
    int32_t writtenHeight = 0;
};

/// Where the pass writes: an image of its caller that it sizes itself, or planes that the caller has sized.
struct PassTarget {
    WorkingImage* image = nullptr;
    const ImagePlanes* planes = nullptr;  ///< taken instead of `image` when not null
};

/// Enhances one frame with the engine's settings.
///
/// source      4:2:0 planes of the decoded frame, never written. Strides at least the width; see SourceImage for `end`.
/// target      must not overlap the source. An image gets the size of the result; given planes must have room for it with
///             strides of a multiple of 64 (luma) and 32 (chroma) samples and 16 spare rows.
/// aspect      pixel aspect, corrected for the scaling
/// planeMask   planes to be written where both axes are scaled by three halves or none is scaled: lumaPlane, secondPlane,
///             thirdPlane. Other modes write all of them.
/// result      1 when planes were written, 0 when the caller is to use the source as it stands. A picture too narrow to
///             be doubled along its rows alone gets chroma only, and no samples are reported.
int32_t EnhancementPass(EnhancementEngine& engine, FrameRecord& frame, const SourceImage& source,
                        const PassTarget& target, float& aspect, FrameInfo& info, uint32_t planeMask,
                        const KernelTable& kernels);

}  // namespace clarivex
