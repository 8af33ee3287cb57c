// The three objects that all media objects of the process share, and the kernels they run on.
#pragma once

#include "pipeline/frame_pipeline.h"

namespace clarivex {

/// The engine of the process. On the streaming thread only, as the noise table and the overlay are.
EnhancementEngine& ProcessEngine();

/// The overlay of the process; it shows its caption unless told otherwise.
Overlay& ProcessOverlay();

/// The kernels that the next frame path takes.
const KernelTable& ProcessKernels();

/// A frame path through the engine, the noise table and the overlay of the process, on the chosen instruction set.
FramePipeline MakeProcessPipeline();

}  // namespace clarivex
