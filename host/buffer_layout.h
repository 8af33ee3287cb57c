// Where the samples of a picture stand in a media buffer, and the way between that and Y4M's planes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/picture.h"

namespace clarivex {

/// The layout of one picture in a media buffer.
///
/// Planar formats: luma rows of `width` bytes, then two chroma planes (YV12: V, U; IYUV: U, V) with rows `width` / 2
/// bytes apart, the later one `height` / 2 of these below the earlier, all divisions rounded down. So with an odd width
/// each chroma row ends on the first byte of the next, and with an odd height the earlier plane's last row is the later
/// one's first. YUY2: rows of (2 · width + 3) & ~3 bytes holding Y0 U Y1 V for each pair of columns.
class BufferLayout {
public:
    BufferLayout(SampleFormat pixelFormat, PictureSize pictureSize) : format(pixelFormat), size(pictureSize) {}

    PictureSize Size() const { return size; }

    /// Bytes from the buffer's start to the picture's last byte.
    size_t Bytes() const;

    /// Writes `picture` to the upper left of `buffer` and black (16, 128, 128) to the rest of the layout. Rows go from
    /// the top, the earlier chroma plane before the later one; YUY2 repeats each chroma row for both rows of a pair and
    /// the last luma of an odd width. `buffer` has at least Bytes() bytes; the picture is not larger than Size().
    void Put(const PlanarPicture& picture, std::span<uint8_t> buffer) const;

    /// Where in `buffer` a 4:2:0 picture of this size can be put plane by plane: nothing for YUY2 and for odd sides, whose
    /// rows have gaps.
    std::optional<WritablePlanes> PlanesIn(std::span<uint8_t> buffer) const;

    /// The picture's planes: 4:2:0 from the planar formats, 4:2:2 from YUY2. They point into `buffer` where its rows have
    /// no gaps, otherwise into `scratch`, which is resized. The last chroma row of the earlier plane, overwritten by the
    /// later plane with an odd height, is a copy of the row above it.
    PicturePlanes Get(std::span<const uint8_t> buffer, std::vector<uint8_t>& scratch) const;

private:
    struct PlanePlace {
        size_t offset;  // bytes from the buffer's start
        size_t stride;  // bytes from row to row
        int32_t width;
        int32_t height;
    };

    PlanePlace LumaPlace() const;
    PlanePlace EarlierChromaPlace() const;
    PlanePlace LaterChromaPlace() const;
    size_t PackedStride() const;

    void PutPlanar(const PlanarPicture& picture, std::span<uint8_t> buffer) const;
    void PutPacked(const PlanarPicture& picture, std::span<uint8_t> buffer) const;
    PicturePlanes GetPlanar(std::span<const uint8_t> buffer, std::vector<uint8_t>& scratch) const;
    PicturePlanes GetPacked(std::span<const uint8_t> buffer, std::vector<uint8_t>& scratch) const;

    void CopyOverlappingChroma(std::span<const uint8_t> buffer, std::span<uint8_t> planes) const;
    static void PutPlane(std::span<const uint8_t> rows, int32_t width, int32_t height, const PlanePlace& place,
                         uint8_t black, std::span<uint8_t> buffer);
    static void GetPlane(std::span<const uint8_t> buffer, const PlanePlace& place, std::span<uint8_t> rows);

    SampleFormat format;
    PictureSize size;
};

}  // namespace clarivex
