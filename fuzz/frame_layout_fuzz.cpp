// Media types, rectangles and capacities as the input has them: a layout that is given lies inside both buffers. Each
// buffer is a block of exactly its capacity, one that the input asks for or the smallest that is accepted, and every byte
// of the layout is touched.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

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

/// Reads or writes every byte of the plane's rows; gives the end of the last one.
const uint8_t* Touch(const Plane& plane, int32_t rowBytes, bool writes) {
    volatile uint8_t read = 0;
    for (int32_t y = 0; y < plane.height; ++y)
        for (int32_t x = 0; x < rowBytes; ++x) {
            if (writes) plane.Row(y)[x] = 1;
            read = plane.Row(y)[x];
        }
    static_cast<void>(read);
    return plane.Row(plane.height - 1) + rowBytes;
}

/// Bytes of the buffer up to the last one that the picture has.
size_t TouchPicture(const ImagePlanes& planes, bool packed, FrameSize size, const uint8_t* buffer, bool writes) {
    const auto isOf = [](const Plane& plane, int32_t width, int32_t height) {
        return plane.width == width && plane.height == height;
    };
    const int32_t pairs = (size.width + 1) / 2;
    Demand(isOf(planes.luma, size.width, size.height), "luma has another size than the picture");
    const uint8_t* end = Touch(planes.luma, packed ? 4 * pairs : size.width, writes);
    for (const Plane& chroma : {planes.second, planes.third}) {
        if (packed) continue;
        Demand(isOf(chroma, pairs, (size.height + 1) / 2), "chroma has another size than the picture");
        end = std::max(end, Touch(chroma, pairs, writes));
    }
    return static_cast<size_t>(end - buffer);
}

struct Capacities {
    size_t input = 0, output = 0;
};

/// Lays the frame out in blocks of these sizes. Gives what is needed of them, nothing when there is no picture.
std::optional<Capacities> Try(const FrameRequest& request, Capacities bytes) {
    const auto input = std::make_unique<uint8_t[]>(bytes.input), output = std::make_unique<uint8_t[]>(bytes.output);
    FrameLayout layout;
    const HRESULT result = LayOutFrame(request, {output.get(), bytes.output}, {input.get(), bytes.input}, layout);
    Demand(result == S_OK || result == E_INVALIDARG || result == E_UNEXPECTED, "an unknown result");
    if (result != S_OK || layout.tooSmall) return {};
    Demand(layout.inputEnd == input.get() + bytes.input && layout.outputEnd == output.get() + bytes.output,
           "the ends are not the buffers'");
    const bool packed = request.format == PixelFormat::yuy2;
    return Capacities{
        TouchPicture(layout.input, packed, {layout.width, layout.height}, input.get(), false),
        TouchPicture(layout.output, packed, {layout.outputWidth, layout.outputHeight}, output.get(), true)};
}

}  // namespace
}  // namespace clarivex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace clarivex;
    InputNumbers numbers(data, size);
    const FrameRequest request = AnyRequest(numbers);
    const Capacities told{numbers.Below(mostBytes), numbers.Below(mostBytes)};
    const std::optional<Capacities> needed = Try(request, told);
    if (!needed) return 0;
    Demand(Try(request, *needed).has_value(), "buffers that end with the picture are refused");
    Try(request, {needed->input - 1, needed->output});  // may find other planes, but none that reach farther
    Demand(!Try(request, {needed->input, needed->output - 1}), "an output is taken that lacks its last byte");
    return 0;
}
