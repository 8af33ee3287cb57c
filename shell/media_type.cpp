// Copies headers in and out of format blocks, and tests what they say before anybody relies on it.
#include "shell/media_type.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "pipeline/frame_geometry.h"
#include "runtime/diagnostics.h"

namespace clarivex {
namespace {

/// A format block need not be aligned for its header, so headers are copied in and out.
template <class Header>
std::optional<Header> CopyHeader(const DMO_MEDIA_TYPE& type) {
    if (type.pbFormat == nullptr || type.cbFormat < sizeof(Header)) return std::nullopt;
    Header header;
    std::memcpy(&header, type.pbFormat, sizeof header);
    return header;
}

template <class Header>
void StoreHeader(DMO_MEDIA_TYPE& type, const Header& header) {
    std::memcpy(type.pbFormat, &header, sizeof header);
}

template <class Header>
void ChangePicture(Header& header, const VideoHeader& values) {
    header.rcTarget = values.target;
    header.bmiHeader = values.bitmap;
}

const StreamFormat* FindFormat(const GUID& subtype, std::span<const StreamFormat> formats) {
    const auto found = std::ranges::find_if(
        formats, [&](const StreamFormat& format) { return IsEqualGUID(format.subtype, subtype) != 0; });
    return found != formats.end() ? &*found : nullptr;
}

int64_t HeightOf(const BITMAPINFOHEADER& bitmap) { return std::abs(int64_t{bitmap.biHeight}); }

bool HasExpectedBits(const StreamFormat& format, const VideoHeader& header) {
    return format.firstHeaderBits == 0 || header.kind != HeaderKind::videoInfo ||
           header.bitmap.biBitCount == format.firstHeaderBits;
}

bool HasPicture(const BITMAPINFOHEADER& bitmap) {
    return bitmap.biSize == sizeof(BITMAPINFOHEADER) && bitmap.biWidth > 0 && bitmap.biHeight != 0 &&
           bitmap.biHeight != std::numeric_limits<LONG>::min();
}

bool TargetFits(const RECT& target, const BITMAPINFOHEADER& bitmap) {
    const bool upright =
        target.left >= 0 && target.top >= 0 && target.right >= target.left && target.bottom >= target.top;
    return upright && target.right - target.left <= bitmap.biWidth && target.bottom - target.top <= HeightOf(bitmap);
}

bool IsWithinLimits(const BITMAPINFOHEADER& bitmap) {
    const int64_t height = HeightOf(bitmap);
    return bitmap.biWidth <= largestSide && height <= largestSide && bitmap.biWidth * height <= largestArea &&
           ImageBytes(bitmap) <= std::numeric_limits<int32_t>::max();
}

bool IsWithinLimitsEnlarged(BITMAPINFOHEADER bitmap) {
    const FrameSize enlarged = OutputSize(bitmap.biWidth, static_cast<int32_t>(HeightOf(bitmap)), true);
    bitmap.biWidth = enlarged.width;
    bitmap.biHeight = enlarged.height;
    return IsWithinLimits(bitmap);
}

bool HasPossibleSize(const BITMAPINFOHEADER& bitmap, StreamSide side) {
    return IsWithinLimits(bitmap) && (side == StreamSide::output || IsWithinLimitsEnlarged(bitmap));
}

}  // namespace

HRESULT MediaType::Assign(const DMO_MEDIA_TYPE& source) {
    DMO_MEDIA_TYPE copy = {};
    const HRESULT result = MoCopyMediaType(&copy, &source);
    Clear();
    type = copy;
    if (FAILED(result)) Clear();
    return result;
}

void MediaType::Clear() {
    MoFreeMediaType(&type);
    type = {};
}

std::optional<VideoHeader> ReadVideoHeader(const DMO_MEDIA_TYPE& type) {
    if (IsEqualGUID(type.formattype, formatVideoInfo)) {
        if (const auto header = CopyHeader<VIDEOINFOHEADER>(type))
            return VideoHeader{HeaderKind::videoInfo, header->rcTarget, header->dwBitRate, 0, 0, header->bmiHeader};
    } else if (IsEqualGUID(type.formattype, formatVideoInfo2)) {
        if (const auto header = CopyHeader<VIDEOINFOHEADER2>(type)) {
            return VideoHeader{HeaderKind::videoInfo2,     header->rcTarget,           header->dwBitRate,
                               header->dwPictAspectRatioX, header->dwPictAspectRatioY, header->bmiHeader};
        }
    }
    return std::nullopt;
}

void WriteVideoHeader(DMO_MEDIA_TYPE& type, const VideoHeader& values) {
    if (values.kind == HeaderKind::videoInfo) {
        auto header = CopyHeader<VIDEOINFOHEADER>(type).value();
        ChangePicture(header, values);
        StoreHeader(type, header);
    } else {
        auto header = CopyHeader<VIDEOINFOHEADER2>(type).value();
        ChangePicture(header, values);
        header.dwInterlaceFlags = 0;
        StoreHeader(type, header);
    }
}

bool IsAcceptedType(const DMO_MEDIA_TYPE& type, StreamSide side, std::span<const StreamFormat> formats) {
    const StreamFormat* format = FindFormat(type.subtype, formats);
    if (!IsEqualGUID(type.majortype, mediaTypeVideo) || format == nullptr) return false;
    const std::optional<VideoHeader> header = ReadVideoHeader(type);
    return header && HasExpectedBits(*format, *header) && HasPicture(header->bitmap) &&
           TargetFits(header->target, header->bitmap) && HasPossibleSize(header->bitmap, side);
}

int64_t ImageBytes(const BITMAPINFOHEADER& bitmap) {
    const int64_t rowBits = int64_t{bitmap.biWidth} * bitmap.biBitCount;
    return (((rowBits + 31) & ~int64_t{31}) >> 3) * HeightOf(bitmap);
}

uint32_t ImageBytes(const DMO_MEDIA_TYPE& type) {
    const std::optional<VideoHeader> header = ReadVideoHeader(type);
    return header ? static_cast<uint32_t>(ImageBytes(header->bitmap)) : 0;
}

ImageFormat FormatOf(const DMO_MEDIA_TYPE& type) {
    const std::optional<VideoHeader> header = ReadVideoHeader(type);
    if (!header) return {};
    const RECT& target = header->target;
    const BITMAPINFOHEADER& bitmap = header->bitmap;
    return {.readable = true,
            .width = bitmap.biWidth,
            .height = bitmap.biHeight,
            .bitCount = bitmap.biBitCount,
            .xPelsPerMeter = bitmap.biXPelsPerMeter,
            .target = {target.left, target.top, target.right, target.bottom}};
}

PixelFormat PixelFormatOf(const DMO_MEDIA_TYPE& type, std::span<const StreamFormat> formats) {
    const StreamFormat* format = FindFormat(type.subtype, formats);
    return format != nullptr ? format->pixels : PixelFormat::other;
}

void TraceSize(const DMO_MEDIA_TYPE& type) {
    if (const auto header = ReadVideoHeader(type))
        Trace("       dim %d x %d", static_cast<int>(header->bitmap.biWidth),
              static_cast<int>(header->bitmap.biHeight));
}

}  // namespace clarivex
