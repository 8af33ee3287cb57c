// The way of one frame from the input buffer to the output buffer.
#pragma once

#include <memory>
#include <utility>

#include "pipeline/frame_request.h"
#include "pipeline/process_state.h"
#include "pipeline/stream_state.h"
#include "platform/win32.h"

namespace clarivex {

struct KernelTable;

/// Turns input memory into output memory, frame by frame, with all that the stream keeps between them. One thread at a
/// time; pipelines on different threads run at once and share only the state of the process.
class FramePipeline {
public:
    /// process  has to outlive the pipeline
    /// fonts    null for a stream without a caption
    FramePipeline(ProcessState& process, std::unique_ptr<FontEngine> fonts, const KernelTable& kernels)
        : process(process), stream(process.Noise(), std::move(fonts)), kernels(kernels) {}

    /// Finds the picture in both buffers, checks that both hold it whole, and enhances it, or copies it when the object
    /// is disabled. Pictures narrower than 32 or lower than 8 leave the output buffer as it was.
    ///
    /// result  S_OK, also when nothing was written; E_POINTER for a null buffer; E_UNEXPECTED for a format that cannot be
    ///         read; E_INVALIDARG for a buffer that cannot hold its picture (nothing was written then)
    /// throws  what MemoryShortage throws; the frame can then be run again, with lighting, noise and caption a frame further
    HRESULT RunFrame(const FrameRequest& request, OutputBuffer output, InputBuffer input);

    /// What the stream holds after its last frame.
    StreamState& Stream() { return stream; }

private:
    ProcessState& process;
    StreamState stream;
    const KernelTable& kernels;
};

}  // namespace clarivex
