// Video made by a formula in integers, the same on every system, and the requests that send it through the frame path.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tests/support/crc32.h"
#include "tests/support/host_stream.h"
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
        : size{pictureWidth, pictureHeight}, outSize(scaled ? OutputSize(size.width, size.height, true) : size) {
        request = StreamOf(format, size.width, size.height, outSize.width, outSize.height);
        request.newStream = request.settingsDirty = true;
        input.resize(PictureOf(size).BytesOf(size.width, size.height));
        output.resize(PictureOf(outSize).BytesOf(outSize.width, outSize.height));
    }

    /// Puts the next frame into both buffers.
    void NextFrame() {
        WriteSource(input, size);
        WriteSource(output, outSize);
        ++frame;
    }

    [[nodiscard]] InputBuffer Input() const { return {input.data(), input.size()}; }
    [[nodiscard]] OutputBuffer Output() { return {output.data(), output.size()}; }

    [[nodiscard]] const FrameSize& OutputOf() const { return outSize; }

    /// Continues a digest over the output's visible samples: luma, U, V. Where the last row of the earlier chroma plane
    /// is the first one of the later plane, the row above it counts.
    [[nodiscard]] uint32_t Digest(uint32_t crc) const {
        for (const int32_t plane : {0, PlaceOfChroma(1), PlaceOfChroma(2)})
            for (int32_t y = 0; y < RowsOf(plane, outSize); ++y) {
                const bool overlaps = !IsPacked() && plane == 1 && outSize.height % 2 != 0;
                const int32_t row = overlaps && y == RowsOf(plane, outSize) - 1 ? y - 1 : y;
                for (int32_t x = 0; x < ColumnsOf(plane, outSize); ++x)
                    crc = Crc32(&output[PictureOf(outSize).PlaceOf(plane, x, row)], 1, crc);
            }
        return crc;
    }

    FrameRequest request;
    int32_t left = 0, top = 0;  ///< where in the endless picture this one begins; both even
    std::vector<uint8_t> input;
    std::vector<uint8_t> output;

private:
    [[nodiscard]] bool IsPacked() const { return request.format == PixelFormat::yuy2; }
    /// U or V, 1 or 2, as the plane of a host's picture; and back.
    [[nodiscard]] int32_t PlaceOfChroma(int32_t plane) const {
        return request.format == PixelFormat::iyuv ? plane : 3 - plane;
    }
    [[nodiscard]] HostPicture PictureOf(const FrameSize& of) const {
        return {IsPacked() ? mediaSubtypeYuy2 : mediaSubtypeYv12, of.width, of.height};
    }
    static int32_t ColumnsOf(int32_t plane, const FrameSize& of) { return plane == 0 ? of.width : (of.width + 1) / 2; }
    [[nodiscard]] int32_t RowsOf(int32_t plane, const FrameSize& of) const {
        return plane == 0 || IsPacked() ? of.height : (of.height + 1) / 2;
    }

    /// The source's sample of a picture's place; an odd width repeats its last column, packed rows share chroma.
    [[nodiscard]] uint8_t SourceSample(int32_t plane, int32_t x, int32_t y) const {
        if (x >= 2 * ColumnsOf(1, size) / (plane == 0 ? 1 : 2) || y >= RowsOf(plane, size))
            return plane == 0 ? 16 : 128;
        if (plane == 0) return SyntheticSample(0, left + std::min(x, size.width - 1), top + y, frame);
        return SyntheticSample(PlaceOfChroma(plane), left / 2 + x, top / 2 + (IsPacked() ? y / 2 : y), frame);
    }

    void WriteSource(std::vector<uint8_t>& buffer, const FrameSize& of) const {
        for (int32_t plane = 0; plane < 3; ++plane) {  // with odd sizes the planes share bytes: the later one wins
            const int32_t columns = plane == 0 && IsPacked() ? (of.width + 1) & ~1 : ColumnsOf(plane, of);
            for (int32_t y = 0; y < RowsOf(plane, of); ++y)
                for (int32_t x = 0; x < columns; ++x)
                    buffer[PictureOf(of).PlaceOf(plane, x, y)] = SourceSample(plane, x, y);
        }
    }

    FrameSize size;
    FrameSize outSize;
    int32_t frame = 0;
};

}  // namespace clarivex
