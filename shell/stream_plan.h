// The decisions of a negotiation: whether a stream is taken, whether it is enlarged, and the type that is given back.
#pragma once

#include <cstdint>

#include "platform/win32.h"
#include "runtime/planes.h"
#include "shell/media_type.h"

namespace clarivex {

/// What the user's settings say of a negotiation.
struct PlanSettings {
    uint32_t mode = 1;
    bool allowHd = false;
    float (*speedGHz)() = nullptr;  ///< asked only where the mode is automatic
};

/// Whether the settings let a picture of this size be enhanced, high definition included.
bool TakesHd(const PlanSettings& settings, const FrameSize& picture);

/// Whether a picture of this size is to be enlarged. May measure the processor.
bool WantsScaling(const PlanSettings& settings, const FrameSize& picture);

/// Width of a pixel over its height, 1 when the header states no shape.
float PixelAspect(const VideoHeader& header, const FrameSize& picture);

/// What is settled for a stream before its first frame. Start values are those of an object that has met no stream.
struct StreamPlan {
    bool scalingOn = false;
    bool hdAccepted = true;
    bool sourceIsVih2WithoutBitrate = false;
    int32_t sourceWidth = 0;  ///< picture size after clipping to the target rectangle
    int32_t sourceHeight = 0;
    float pixelAspect = 0.0F;  ///< width of a pixel over its height in the source's terms, 1.0 when nothing is stated
};

/// Decides about a stream anew, in place. What a refusal leaves undecided keeps its value, but `scalingOn` is then
/// false.
///
/// input   header of an accepted type; comes back as the header to offer for the output. Unspecified on refusal.
/// result  false: refused, as high definition that the settings shut out or as below 16 pixels on a side.
[[nodiscard]] bool PlanStream(const PlanSettings& settings, VideoHeader& input, StreamPlan& plan);

}  // namespace clarivex
