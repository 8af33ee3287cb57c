// What one stream owns, so that no other can change what it comes to.
#pragma once

#include <memory>
#include <utility>

#include "engine/engine_settings.h"
#include "engine/engine_state.h"
#include "overlay/overlay.h"
#include "pipeline/frame_workspace.h"
#include "pipeline/noise_table.h"

namespace clarivex {

/// What decides the filters of a frame besides the sharpness.
struct FrameShape {
    int32_t width = 0;
    int32_t height = 0;
    bool scalingOn = false;
    bool liftSizeLimits = false;

    bool operator==(const FrameShape&) const = default;
};

/// Any front end makes its own. On the stream's frame thread only.
struct StreamState {
    StreamState(const NoiseGenerator& noisePlanes, std::unique_ptr<FontEngine> fonts)
        : noise(noisePlanes), overlay(std::move(fonts)) {}

    EngineSettings settings;
    EngineState engine;
    NoiseTable noise;
    Overlay overlay;
    FrameWorkspace workspace;
    FrameShape lastShape;
};

}  // namespace clarivex
