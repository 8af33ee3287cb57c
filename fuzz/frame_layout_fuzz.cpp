// Media types, rectangles and capacities as the input has them: a layout that is given lies inside both buffers. Each
// buffer is a block of exactly its capacity, one that the input asks for or the smallest that is accepted, and every byte
// of the layout is touched.
#include <memory>
#include <numeric>
#include <optional>

#include "fuzz/support/target.h"
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

/// Reads every byte of the plane's rows, as wide and high as they must be, and writes them where it may; gives the end of the last one.
template <class AnyPlane>
const uint8_t* Touch(const AnyPlane& plane, FrameSize size, int32_t rowBytes) {
    static volatile uint32_t sum = 0;
    Demand(plane.width == size.width && plane.height == size.height, "a plane has another size than the picture");
    for (int32_t y = 0; y < plane.height; ++y) {
        if constexpr (std::is_same_v<AnyPlane, Plane>) std::fill_n(plane.Row(y), rowBytes, uint8_t{1});
        sum = std::accumulate(plane.Row(y), plane.Row(y) + rowBytes, sum);
    }
    return plane.Row(plane.height - 1) + rowBytes;
}

/// Bytes of the buffer up to the last one that the picture has.
template <class Picture>
size_t TouchPicture(const Picture& planes, bool packed, FrameSize size, const uint8_t* buffer) {
    const FrameSize half{(size.width + 1) / 2, (size.height + 1) / 2};
    const uint8_t* end = Touch(planes.luma, size, packed ? 4 * half.width : size.width);
    if (!packed)
        for (const auto& chroma : {planes.second, planes.third}) end = std::max(end, Touch(chroma, half, half.width));
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
    return Capacities{TouchPicture(layout.input, packed, {layout.width, layout.height}, input.get()),
                      TouchPicture(layout.output, packed, {layout.outputWidth, layout.outputHeight}, output.get())};
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
