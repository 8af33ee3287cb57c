#include "pipeline/frame_pipeline.h"

#include "pipeline/frame_driver.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/plain_copy.h"

namespace clarivex {

FrameResult FramePipeline::RunFrame(const FrameRequest& request, OutputBuffer output, InputBuffer input) {
    FrameDriver driver(engine, noise, overlay, kernels, workspace);
    if (request.newStream) driver.StartStream();
    if (request.format == PixelFormat::other) return {};
    FrameLayout layout;
    const HRESULT code = LayOutFrame(request, output, input, layout);
    if (FAILED(code)) return {code, false};
    if (layout.tooSmall) return {};
    if (!request.enabled) {
        PlainCopy(request.format, layout);
        return {};
    }
    driver.Enhance(request, layout);
    return {S_OK, true};
}

}  // namespace clarivex
