// Copies between Y4M's planes and the media buffers' layouts, row by row.
#include "host/buffer_layout.h"

#include <algorithm>
#include <cstring>

namespace clarivex {

namespace {

constexpr uint8_t blackLuma = 16;
constexpr uint8_t neutralChroma = 128;
constexpr size_t pairBytes = 4;  // Y0 U Y1 V

/// Packs one row; an odd last column makes a pair with itself.
void PackRow(const uint8_t* luma, const uint8_t* u, const uint8_t* v, int32_t width, uint8_t* packed) {
    for (int32_t pair = 0; pair < width / 2; ++pair) {
        const uint8_t bytes[pairBytes] = {luma[2 * pair], u[pair], luma[2 * pair + 1], v[pair]};
        std::memcpy(packed + pairBytes * static_cast<size_t>(pair), bytes, pairBytes);
    }
    if (width % 2 != 0) {
        const int32_t pair = width / 2;
        const uint8_t bytes[pairBytes] = {luma[width - 1], u[pair], luma[width - 1], v[pair]};
        std::memcpy(packed + pairBytes * static_cast<size_t>(pair), bytes, pairBytes);
    }
}

void BlackPairs(uint8_t* packed, size_t count) {
    constexpr uint8_t blackPair[pairBytes] = {blackLuma, neutralChroma, blackLuma, neutralChroma};
    for (size_t pair = 0; pair < count; ++pair) std::memcpy(packed + pairBytes * pair, blackPair, pairBytes);
}

void UnpackRow(const uint8_t* packed, int32_t width, uint8_t* luma, uint8_t* u, uint8_t* v) {
    for (int32_t x = 0; x < width; ++x) luma[x] = packed[2 * x];
    for (int32_t pair = 0; pair < (width + 1) / 2; ++pair) {
        u[pair] = packed[4 * pair + 1];
        v[pair] = packed[4 * pair + 3];
    }
}

}  // namespace

BufferLayout::PlanePlace BufferLayout::LumaPlace() const {
    return {0, static_cast<size_t>(size.width), size.width, size.height};
}

BufferLayout::PlanePlace BufferLayout::EarlierChromaPlace() const {
    return {size.LumaBytes(), static_cast<size_t>(size.width / 2), size.ChromaWidth(), size.ChromaHeight()};
}

BufferLayout::PlanePlace BufferLayout::LaterChromaPlace() const {
    PlanePlace place = EarlierChromaPlace();
    place.offset += place.stride * static_cast<size_t>(size.height / 2);
    return place;
}

size_t BufferLayout::PackedStride() const { return (2 * static_cast<size_t>(size.width) + 3) & ~size_t{3}; }

size_t BufferLayout::Bytes() const {
    if (format == SampleFormat::yuy2) return PackedStride() * static_cast<size_t>(size.height);
    const PlanePlace last = LaterChromaPlace();
    return last.offset + last.stride * static_cast<size_t>(last.height - 1) + static_cast<size_t>(last.width);
}

void BufferLayout::Put(const PlanarPicture& picture, std::span<uint8_t> buffer) const {
    if (format == SampleFormat::yuy2)
        PutPacked(picture, buffer);
    else
        PutPlanar(picture, buffer);
}

std::optional<WritablePlanes> BufferLayout::PlanesIn(std::span<uint8_t> buffer) const {
    if (format == SampleFormat::yuy2 || size.width % 2 != 0 || size.height % 2 != 0) return std::nullopt;
    const auto earlier = buffer.subspan(EarlierChromaPlace().offset, size.ChromaBytes());
    const auto later = buffer.subspan(LaterChromaPlace().offset, size.ChromaBytes());
    const bool yv12 = format == SampleFormat::yv12;
    return WritablePlanes{buffer.first(size.LumaBytes()), yv12 ? later : earlier, yv12 ? earlier : later};
}

PicturePlanes BufferLayout::Get(std::span<const uint8_t> buffer, std::vector<uint8_t>& scratch) const {
    return format == SampleFormat::yuy2 ? GetPacked(buffer, scratch) : GetPlanar(buffer, scratch);
}

void BufferLayout::PutPlanar(const PlanarPicture& picture, std::span<uint8_t> buffer) const {
    const auto [luma, u, v] = picture.Planes();
    const auto& earlier = format == SampleFormat::yv12 ? v : u;
    const auto& later = format == SampleFormat::yv12 ? u : v;
    const PictureSize given = picture.size;
    PutPlane(luma, given.width, given.height, LumaPlace(), blackLuma, buffer);
    PutPlane(earlier, given.ChromaWidth(), given.ChromaHeight(), EarlierChromaPlace(), neutralChroma, buffer);
    PutPlane(later, given.ChromaWidth(), given.ChromaHeight(), LaterChromaPlace(), neutralChroma, buffer);
}

void BufferLayout::PutPlane(std::span<const uint8_t> rows, int32_t width, int32_t height, const PlanePlace& place,
                            uint8_t black, std::span<uint8_t> buffer) {
    const auto copied = static_cast<size_t>(width);
    const auto blackened = static_cast<size_t>(place.width - width);
    uint8_t* target = buffer.data() + place.offset;
    for (int32_t y = 0; y < place.height; ++y, target += place.stride) {
        if (y < height) {
            std::memcpy(target, rows.data() + copied * static_cast<size_t>(y), copied);
            std::memset(target + copied, black, blackened);
        } else {
            std::memset(target, black, static_cast<size_t>(place.width));
        }
    }
}

void BufferLayout::PutPacked(const PlanarPicture& picture, std::span<uint8_t> buffer) const {
    const auto [luma, u, v] = picture.Planes();
    const auto lumaWidth = static_cast<size_t>(picture.size.width);
    const auto chromaWidth = static_cast<size_t>(picture.size.ChromaWidth());
    const auto pairs = static_cast<size_t>(size.ChromaWidth());
    uint8_t* target = buffer.data();
    for (int32_t y = 0; y < size.height; ++y, target += PackedStride()) {
        size_t filled = 0;
        if (y < picture.size.height) {
            const size_t chroma = chromaWidth * static_cast<size_t>(y / 2);
            PackRow(luma.data() + lumaWidth * static_cast<size_t>(y), u.data() + chroma, v.data() + chroma,
                    picture.size.width, target);
            filled = chromaWidth;
        }
        BlackPairs(target + pairBytes * filled, pairs - filled);
    }
}

PicturePlanes BufferLayout::GetPlanar(std::span<const uint8_t> buffer, std::vector<uint8_t>& scratch) const {
    const size_t chroma = size.ChromaBytes();
    std::span<const uint8_t> earlier, later;
    if (size.width % 2 == 0 && size.height % 2 == 0) {
        earlier = buffer.subspan(EarlierChromaPlace().offset, chroma);
        later = buffer.subspan(LaterChromaPlace().offset, chroma);
    } else {
        scratch.resize(2 * chroma);
        CopyOverlappingChroma(buffer, scratch);
        earlier = std::span(scratch).subspan(0, chroma);
        later = std::span(scratch).subspan(chroma, chroma);
    }
    const bool yv12 = format == SampleFormat::yv12;
    return {buffer.subspan(0, size.LumaBytes()), yv12 ? later : earlier, yv12 ? earlier : later};
}

void BufferLayout::CopyOverlappingChroma(std::span<const uint8_t> buffer, std::span<uint8_t> planes) const {
    const size_t chroma = size.ChromaBytes();
    const auto rowBytes = static_cast<size_t>(size.ChromaWidth());
    GetPlane(buffer, EarlierChromaPlace(), planes.subspan(0, chroma));
    GetPlane(buffer, LaterChromaPlace(), planes.subspan(chroma, chroma));
    if (size.height % 2 != 0 && size.height > 1)
        std::memcpy(planes.data() + chroma - rowBytes, planes.data() + chroma - 2 * rowBytes, rowBytes);
}

void BufferLayout::GetPlane(std::span<const uint8_t> buffer, const PlanePlace& place, std::span<uint8_t> rows) {
    const auto width = static_cast<size_t>(place.width);
    for (size_t y = 0; y < static_cast<size_t>(place.height); ++y)
        std::memcpy(rows.data() + width * y, buffer.data() + place.offset + place.stride * y, width);
}

PicturePlanes BufferLayout::GetPacked(std::span<const uint8_t> buffer, std::vector<uint8_t>& scratch) const {
    const size_t luma = size.LumaBytes();
    const auto chromaWidth = static_cast<size_t>(size.ChromaWidth());
    const size_t chroma = chromaWidth * static_cast<size_t>(size.height);
    scratch.resize(luma + 2 * chroma);
    const std::span<uint8_t> planes(scratch);
    const auto u = planes.subspan(luma, chroma);
    const auto v = planes.subspan(luma + chroma, chroma);
    for (size_t y = 0; y < static_cast<size_t>(size.height); ++y)
        UnpackRow(buffer.data() + PackedStride() * y, size.width, planes.data() + static_cast<size_t>(size.width) * y,
                  u.data() + chromaWidth * y, v.data() + chromaWidth * y);
    return {planes.subspan(0, luma), u, v};
}

}  // namespace clarivex
