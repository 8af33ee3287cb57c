#include "pipeline/frame_pipeline.h"

#include "pipeline/frame_driver.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/plain_copy.h"

namespace clarivex {

HRESULT FramePipeline::RunFrame(const FrameRequest& request, OutputBuffer output, InputBuffer input) {
    FrameDriver driver(process, stream, kernels);
    if (request.newStream) driver.StartStream();
    if (request.settingsDirty) driver.RenewFilters();
    if (request.format == PixelFormat::other) return S_OK;
    FrameLayout layout;
    const HRESULT code = LayOutFrame(request, output, input, layout);
    if (FAILED(code) || layout.tooSmall) return code;
    if (request.enabled)
        driver.Enhance(request, layout);
    else
        PlainCopy(request.format, layout);
    return S_OK;
}

}  // namespace clarivex
