// Media types, rectangles and capacities as the input has them: a layout that is given lies inside both buffers. Each
// buffer is a block of exactly its capacity, and every byte of the layout is touched.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/support/demand.h"
#include "fuzz/support/input_numbers.h"
#include "pipeline/frame_geometry.h"

namespace clarivex {
namespace {

constexpr uint32_t mostBytes = 1 << 15;

ImageFormat AnyFormat(InputNumbers& numbers) {
    ImageFormat format;
    format.readable = numbers.Below(16) != 15;
    format.width = numbers.Any<int32_t>();
    format.height = numbers.Any<int32_t>();
    format.bitCount = numbers.Any<uint16_t>();
    format.xPelsPerMeter = numbers.Any<uint8_t>();
    if (numbers.Below(2) != 0) format.target = numbers.Any<PictureRect>();
    return format;
}

FrameRequest AnyRequest(InputNumbers& numbers) {
    constexpr PixelFormat formats[] = {PixelFormat::yv12, PixelFormat::iyuv, PixelFormat::yuy2};
    const uint32_t flags = numbers.Below(256);
    FrameRequest request;
    request.format = formats[flags % 3];
    request.scalingOn = (flags & 4) != 0;
    request.sourceIsVih2WithoutBitrate = (flags & 8) != 0;
    request.sourceWidth = numbers.Any<int32_t>();
    request.sourceHeight = numbers.Any<int32_t>();
    request.input = AnyFormat(numbers);
    request.output = AnyFormat(numbers);
    request.source = (flags & 16) != 0 ? AnyFormat(numbers) : request.input;
    return request;
}

int32_t Sum(const Plane& plane, int32_t rowBytes) {
    int32_t sum = 0;
    for (int32_t y = 0; y < plane.height; ++y)
        for (int32_t x = 0; x < rowBytes; ++x) sum += plane.Row(y)[x];
    return sum;
}

void Fill(const Plane& plane, int32_t rowBytes) {
    for (int32_t y = 0; y < plane.height; ++y)
        for (int32_t x = 0; x < rowBytes; ++x) plane.Row(y)[x] = 1;
}

void CheckSize(const Plane& plane, int32_t width, int32_t height) {
    Demand(plane.width == width && plane.height == height, "a plane has another size than its picture");
}

void CheckPlanes(const ImagePlanes& planes, int32_t width, int32_t height, bool packed) {
    CheckSize(planes.luma, width, height);
    for (const Plane& chroma : {planes.second, planes.third})
        if (!packed) CheckSize(chroma, (width + 1) / 2, (height + 1) / 2);
}

void TouchPlanes(const FrameLayout& layout, bool packed) {
    CheckPlanes(layout.input, layout.width, layout.height, packed);
    CheckPlanes(layout.output, layout.outputWidth, layout.outputHeight, packed);
    if (packed) {
        volatile int32_t read = Sum(layout.input.luma, (layout.width + 1) / 2 * 4);
        static_cast<void>(read);
        return Fill(layout.output.luma, (layout.outputWidth + 1) / 2 * 4);
    }
    for (const Plane& plane : {layout.input.luma, layout.input.second, layout.input.third}) {
        volatile int32_t read = Sum(plane, plane.width);
        static_cast<void>(read);
    }
    for (const Plane& plane : {layout.output.luma, layout.output.second, layout.output.third}) Fill(plane, plane.width);
}

}  // namespace
}  // namespace clarivex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace clarivex;
    InputNumbers numbers(data, size);
    const FrameRequest request = AnyRequest(numbers);
    std::vector<uint8_t> input(numbers.Below(mostBytes)), output(numbers.Below(mostBytes));
    uint8_t nothing = 0;
    const InputBuffer from{input.empty() ? &nothing : input.data(), input.size()};
    const OutputBuffer to{output.empty() ? &nothing : output.data(), output.size()};
    FrameLayout layout;
    const HRESULT result = LayOutFrame(request, to, from, layout);
    Demand(result == S_OK || result == E_INVALIDARG || result == E_UNEXPECTED, "an unknown result");
    if (result != S_OK || layout.tooSmall) return 0;
    Demand(layout.inputEnd == from.data + from.capacity && layout.outputEnd == to.data + to.capacity,
           "the ends are not the buffers'");
    TouchPlanes(layout, request.format == PixelFormat::yuy2);
    return 0;
}
