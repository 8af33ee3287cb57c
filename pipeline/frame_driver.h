// The enhancement of one frame: settings, engine, tone, noise, overlay, and the output stage that writes the buffer.
#pragma once

#include "engine/enhancement_pass.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/frame_request.h"
#include "pipeline/process_state.h"
#include "pipeline/stream_state.h"

namespace clarivex {

/// Strength that a slider value stands for: the lower end of the slider, up to 2, is compressed. What is no strength, below
/// 0 or no number, comes back as no number, which the pass takes as 0.
float StrengthOfSlider(float sharpness);

class FrameDriver {
public:
    FrameDriver(ProcessState& process, StreamState& stream, const KernelTable& kernels)
        : process(process),
          engine(stream.engine),
          noise(stream.noise),
          overlay(stream.overlay),
          workspace(stream.workspace),
          lastShape(stream.lastShape),
          kernels(kernels) {}

    /// Before the first frame of a stream: lighting starts from the levels of video, the caption from its first frame, and
    /// filters are designed anew.
    void StartStream();

    /// The next frame enhanced designs its filters anew.
    void RenewFilters() { engine.filtersDirty = 1; }

    /// Reads the picture of the layout's input and writes the one of its output.
    void Enhance(const FrameRequest& request, const FrameLayout& layout);

private:
    void ApplySettings(const FrameRequest& request, const FrameLayout& layout);
    void EnhancePacked(const FrameRequest& request, const FrameLayout& layout);
    void EnhancePlanar(const FrameRequest& request, const FrameLayout& layout);
    FrameInfo RunEngine(const FrameRequest& request, const SourceImage& source, const PassTarget& target,
                        float& aspect);
    void PrepareOutput(const FrameInfo& info, const FrameLayout& layout, float aspect);

    ProcessState& process;
    EnhancementEngine& engine;
    NoiseTable& noise;
    Overlay& overlay;
    FrameWorkspace& workspace;
    FrameShape& lastShape;
    const KernelTable& kernels;
};

}  // namespace clarivex
