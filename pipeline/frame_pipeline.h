// The way of one frame from the input buffer to the output buffer.
#pragma once

#include "pipeline/frame_request.h"
#include "pipeline/frame_workspace.h"
#include "platform/win32.h"

namespace clarivex {

class EnhancementEngine;
class NoiseTable;
class Overlay;
struct KernelTable;

/// Result of one frame.
///
/// code             S_OK, also when the picture is too small to be processed and nothing was written;
///                  E_POINTER for a null buffer; E_UNEXPECTED for a format that cannot be read;
///                  E_INVALIDARG for a buffer that cannot hold its picture (nothing was written then).
/// settingsApplied  the settings reached the engine, so `settingsDirty` may be cleared.
struct FrameResult {
    HRESULT code = S_OK;
    bool settingsApplied = false;
};

/// Turns input memory into output memory, frame by frame, and keeps its working memory between frames.
///
/// The engine, the noise table and the overlay are shared by all pipelines of the process and are not locked: the
/// player serialises streaming calls.
class FramePipeline {
public:
    FramePipeline(EnhancementEngine& engine, NoiseTable& noise, Overlay& overlay, const KernelTable& kernels)
        : engine(engine), noise(noise), overlay(overlay), kernels(kernels) {}

    /// Finds the picture in both buffers, checks that both hold it whole, and enhances it, or copies it when the object
    /// is disabled. Pictures narrower than 32 or lower than 8 leave the output buffer as it was.
    FrameResult RunFrame(const FrameRequest& request, OutputBuffer output, InputBuffer input);

private:
    EnhancementEngine& engine;
    NoiseTable& noise;
    Overlay& overlay;
    const KernelTable& kernels;
    FrameWorkspace workspace;
};

}  // namespace clarivex
