// Video made by a formula in integers, the same on every system, and the requests that send it through the frame path.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tests/support/crc32.h"
#include "tests/support/stream_setup.h"

namespace clarivex {

/// Slopes, edges of several sizes and a little noise, moving from frame to frame. plane 0 is luma, 1 and 2 are U and V.
inline uint8_t SyntheticSample(int32_t plane, int32_t x, int32_t y, int32_t frame) {
    uint32_t hash = static_cast<uint32_t>(((plane * 97 + frame) * 1031 + y) * 4099 + x) * 2654435761U;
    hash ^= hash >> 15;
    const auto noise = static_cast<int32_t>(hash * 2246822519U >> 28);  // 0 … 15
    const int32_t slope = (x * 2 + y * 3 + frame * 5) % 96;
    const int32_t blocks = ((x + frame) / 11 + y / 5) % 2 * 48 + (x / 3 % 7 == 0 ? 24 : 0);
    return static_cast<uint8_t>(plane == 0 ? 30 + slope + blocks + noise : 90 + slope / 2 + blocks / 4 + noise / 2);
}

/// One stream of synthetic frames with its buffers, without gaps between rows and planes. Before each frame the output
/// buffer holds the source at its upper left, over black.
class SyntheticVideo {
public:
    SyntheticVideo(PixelFormat format, int32_t pictureWidth, int32_t pictureHeight, bool scaled)
        : width(pictureWidth), height(pictureHeight), outSize{width, height} {
        if (scaled) outSize = OutputSize(width, height, true);
        request = StreamOf(format, width, height, outSize.width, outSize.height);
        request.newStream = request.settingsDirty = true;
        input.resize(BytesOf({width, height}));
        output.resize(BytesOf(outSize));
    }

    /// Puts the next frame into both buffers.
    void NextFrame() {
        WriteSource(input, {width, height});
        WriteSource(output, outSize);
        ++frame;
    }

    [[nodiscard]] InputBuffer Input() const { return {input.data(), input.size()}; }
    [[nodiscard]] OutputBuffer Output() { return {output.data(), output.size()}; }

    /// Continues a digest over the output's visible samples: luma, U, V. Where the last row of the earlier chroma plane
    /// is the first one of the later plane, the row above it counts.
    [[nodiscard]] uint32_t Digest(uint32_t crc) const {
        for (int32_t plane = 0; plane < 3; ++plane) {
            const int32_t rows = RowsOf(plane, outSize);
            const bool overlaps = !IsPacked() && plane == 3 - LaterChroma() && outSize.height % 2 != 0;
            for (int32_t y = 0; y < rows; ++y) {
                const int32_t row = overlaps && y == rows - 1 ? y - 1 : y;
                for (int32_t x = 0; x < ColumnsOf(plane, outSize); ++x)
                    crc = Crc32(&output[PlaceOf(outSize, plane, x, row)], 1, crc);
            }
        }
        return crc;
    }

    FrameRequest request;
    std::vector<uint8_t> input;
    std::vector<uint8_t> output;

private:
    [[nodiscard]] bool IsPacked() const { return request.format == PixelFormat::yuy2; }
    [[nodiscard]] int32_t LaterChroma() const { return request.format == PixelFormat::iyuv ? 2 : 1; }

    static int32_t ColumnsOf(int32_t plane, const FrameSize& size) {
        return plane == 0 ? size.width : (size.width + 1) / 2;
    }
    [[nodiscard]] int32_t RowsOf(int32_t plane, const FrameSize& size) const {
        return plane == 0 || IsPacked() ? size.height : (size.height + 1) / 2;
    }
    [[nodiscard]] int32_t StrideOf(const FrameSize& size) const {
        return IsPacked() ? (2 * size.width + 3) / 4 * 4 : size.width;
    }

    [[nodiscard]] size_t BytesOf(const FrameSize& size) const {
        if (IsPacked()) return static_cast<size_t>(StrideOf(size) * size.height);
        return PlaceOf(size, LaterChroma(), ColumnsOf(1, size) - 1, RowsOf(1, size) - 1) + 1;
    }

    /// Byte of a sample in a buffer.
    [[nodiscard]] size_t PlaceOf(const FrameSize& size, int32_t plane, int32_t x, int32_t y) const {
        const int32_t stride = StrideOf(size);
        if (IsPacked()) return static_cast<size_t>(y * stride + (plane == 0 ? 2 * x : 4 * x + 2 * plane - 1));
        if (plane == 0) return static_cast<size_t>(y * stride + x);
        const int32_t row = y + (plane == LaterChroma() ? size.height / 2 : 0);
        return static_cast<size_t>(stride * size.height + row * (stride / 2) + x);
    }

    /// The source's sample of a picture's place; an odd width repeats its last column, packed rows share chroma.
    [[nodiscard]] uint8_t SourceSample(int32_t plane, int32_t x, int32_t y) const {
        if (x >= 2 * ColumnsOf(1, {width, height}) / (plane == 0 ? 1 : 2) || y >= RowsOf(plane, {width, height}))
            return plane == 0 ? 16 : 128;
        if (plane == 0) return SyntheticSample(0, std::min(x, width - 1), y, frame);
        return SyntheticSample(plane, x, IsPacked() ? y / 2 : y, frame);
    }

    void WriteSource(std::vector<uint8_t>& buffer, const FrameSize& size) const {
        // With odd sizes the planes share bytes: the later one wins.
        for (const int32_t plane : {0, 3 - LaterChroma(), LaterChroma()}) {
            const int32_t columns = plane == 0 && IsPacked() ? (size.width + 1) & ~1 : ColumnsOf(plane, size);
            for (int32_t y = 0; y < RowsOf(plane, size); ++y)
                for (int32_t x = 0; x < columns; ++x) buffer[PlaceOf(size, plane, x, y)] = SourceSample(plane, x, y);
        }
    }

    int32_t width;
    int32_t height;
    FrameSize outSize;
    int32_t frame = 0;
};

}  // namespace clarivex
