// The enhancement of one frame: settings, engine, tone, noise, overlay, and the output stage that writes the buffer.
#pragma once

#include "engine/enhancement_pass.h"
#include "overlay/overlay.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/frame_request.h"
#include "pipeline/frame_workspace.h"
#include "pipeline/noise_table.h"

namespace clarivex {

/// Strength that a slider value stands for: the lower end of the slider, up to 2, is compressed.
float StrengthOfSlider(float sharpness);

class FrameDriver {
public:
    FrameDriver(EnhancementEngine& engine, NoiseTable& noise, Overlay& overlay, const KernelTable& kernels,
                FrameWorkspace& workspace)
        : engine(engine), noise(noise), overlay(overlay), kernels(kernels), workspace(workspace) {}

    /// Before the first frame of a stream: lighting starts from the levels of video, the caption from its first frame.
    void StartStream();

    /// Reads the picture of the layout's input and writes the one of its output.
    void Enhance(const FrameRequest& request, const FrameLayout& layout);

private:
    void ApplySettings(const FrameRequest& request);
    void EnhancePacked(const FrameRequest& request, const FrameLayout& layout);
    void EnhancePlanar(const FrameRequest& request, const FrameLayout& layout);
    FrameInfo RunEngine(const FrameRequest& request, const SourceImage& source, const PassTarget& target,
                        float& aspect);
    void PrepareOutput(const FrameInfo& info, const FrameLayout& layout, float aspect);

    EnhancementEngine& engine;
    NoiseTable& noise;
    Overlay& overlay;
    const KernelTable& kernels;
    FrameWorkspace& workspace;
};

}  // namespace clarivex
