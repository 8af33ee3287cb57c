// The way of one frame from the input buffer to the output buffer.
#pragma once

#include <memory>
#include <utility>

#include "engine/pass_plan.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/frame_request.h"
#include "pipeline/process_state.h"
#include "pipeline/stream_state.h"
#include "platform/win32.h"

namespace clarivex {

class EnhancementPass;
struct KernelTable;
struct OutputStageInputs;

/// Strength that a slider value stands for: the lower end of the slider, up to 2, is compressed. What is no strength, below
/// 0 or no number, comes back as no number, which the pass takes as 0.
float StrengthOfSlider(float sharpness);

/// Turns input memory into output memory, frame by frame, with all that the stream keeps between them. One thread at a
/// time; pipelines on different threads run at once and share only the state of the process.
class FramePipeline {
public:
    /// process  has to outlive the pipeline
    /// fonts    null for a stream without a caption
    FramePipeline(ProcessState& process, std::unique_ptr<FontEngine> fonts, const KernelTable& kernels)
        : process(process), stream(process.Noise(), std::move(fonts)), kernels(&kernels) {}

    /// Finds the picture in both buffers, checks that both hold it whole, and enhances it, or copies it when the object
    /// is disabled. Pictures narrower than 32 or lower than 8 leave the output buffer as it was.
    ///
    /// result  S_OK, also when nothing was written; E_POINTER for a null buffer; E_UNEXPECTED for a format that cannot be
    ///         read; E_INVALIDARG for a buffer that cannot hold its picture (nothing was written then)
    /// throws  what MemoryShortage throws; the frame can then be run again, with lighting, noise and caption a frame further
    HRESULT RunFrame(const FrameRequest& request, OutputBuffer output, InputBuffer input);

    /// Enhances one frame whose planes are known. Of the request counts what is not about buffers: format, settings and
    /// whether the picture is enlarged; it is enabled.
    ///
    /// layout  at least smallestWidth × smallestHeight
    /// throws  as RunFrame
    void RunPlanes(const FrameRequest& request, const FrameLayout& layout);

    /// Other kernels from the next frame on, with the same bytes.
    void UseKernels(const KernelTable& table) { kernels = &table; }

    /// What the stream holds after its last frame.
    StreamState& Stream() { return stream; }

private:
    /// What is known of a frame before it is scaled.
    struct Frame {
        const FrameRequest& request;
        const FrameLayout& layout;
        const PassPlan& plan;
        const SourceImage& source;
    };

    void TakeNotes(const FrameRequest& request);
    void StartStream();
    void RenewFilters() { stream.engine.filtersDirty = true; }
    void Enhance(const FrameRequest& request, const FrameLayout& layout);
    void ApplySettings(const FrameRequest& request, const FrameLayout& layout);
    SourceImage Load(const FrameRequest& request, const FrameLayout& layout);
    PassRequest AskPass(const FrameRequest& request);
    void Tone(LightingCorrection& correction) const;
    void MakeNoise(const FrameRequest& request, float amplitude);
    void ComposeOverlay(const FrameLayout& layout, float aspect);
    PictureView MakeRoom(const Frame& frame, const FrameSize& size, bool streams);
    void WritePlanar(const Frame& frame, EnhancementPass& pass, const OutputStageInputs& inputs);
    void WritePacked(const Frame& frame, EnhancementPass& pass, const OutputStageInputs& inputs);

    ProcessState& process;
    StreamState stream;
    const KernelTable* kernels;
};

}  // namespace clarivex
