// What all media objects of the process share, and the kernels they run on.
#pragma once

#include "pipeline/frame_pipeline.h"

namespace clarivex {

/// What all streams of this process share; the caption is shown unless told otherwise.
ProcessState& ThisProcess();

/// The kernels that the next frame path takes.
const KernelTable& ProcessKernels();

/// A frame path for one stream of this process, on the chosen instruction set and with the system's fonts.
FramePipeline MakeProcessPipeline();

}  // namespace clarivex
