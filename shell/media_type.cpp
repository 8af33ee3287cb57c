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

// Of the control flags of a VIDEOINFOHEADER2. The upper 24 bits tell the colours where the second flag is set.
constexpr DWORD controlFlagsUsed = 0x1;
constexpr DWORD coloursTold = 0x80;
constexpr DWORD plainControlFlags = 0xFF;
constexpr DWORD matrixOfBt601 = DWORD{2} << 15;

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
    header.rcSource = values.source;
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
            return VideoHeader{.source = header->rcSource,
                               .target = header->rcTarget,
                               .bitRate = header->dwBitRate,
                               .bitmap = header->bmiHeader};
    } else if (IsEqualGUID(type.formattype, formatVideoInfo2)) {
        if (const auto header = CopyHeader<VIDEOINFOHEADER2>(type)) {
            return VideoHeader{.kind = HeaderKind::videoInfo2,
                               .source = header->rcSource,
                               .target = header->rcTarget,
                               .bitRate = header->dwBitRate,
                               .aspectX = header->dwPictAspectRatioX,
                               .aspectY = header->dwPictAspectRatioY,
                               .controlFlags = header->dwControlFlags,
                               .bitmap = header->bmiHeader};
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
        header.dwControlFlags = values.controlFlags;
        header.dwInterlaceFlags = 0;
        StoreHeader(type, header);
    }
}

HRESULT MakeVideoType(const DMO_MEDIA_TYPE& like, const VideoHeader& values, DMO_MEDIA_TYPE& target) {
    const bool grows = values.kind == HeaderKind::videoInfo2 && !IsEqualGUID(like.formattype, formatVideoInfo2);
    VIDEOINFOHEADER2 wider = {};
    DMO_MEDIA_TYPE model = like;
    if (grows) {
        const auto header = CopyHeader<VIDEOINFOHEADER>(like).value();
        wider.dwBitRate = header.dwBitRate;
        wider.dwBitErrorRate = header.dwBitErrorRate;
        wider.AvgTimePerFrame = header.AvgTimePerFrame;
        wider.dwPictAspectRatioX = static_cast<DWORD>(values.source.right - values.source.left);
        wider.dwPictAspectRatioY = static_cast<DWORD>(values.source.bottom - values.source.top);
        model.formattype = formatVideoInfo2;
        model.cbFormat = sizeof wider;
        model.pbFormat = reinterpret_cast<BYTE*>(&wider);
    }
    model.lSampleSize = values.bitmap.biSizeImage;
    const HRESULT copied = MoCopyMediaType(&target, &model);
    if (SUCCEEDED(copied)) WriteVideoHeader(target, values);
    return copied;
}

bool TellsColours(const VideoHeader& header) { return (header.controlFlags & coloursTold) != 0; }

void TellStandardColours(VideoHeader& header) {
    header.controlFlags = (header.controlFlags & plainControlFlags) | controlFlagsUsed | coloursTold | matrixOfBt601;
}

std::optional<VideoHeader> ReadUsableHeader(const DMO_MEDIA_TYPE& type, StreamSide side,
                                            std::span<const StreamFormat> formats) {
    const StreamFormat* format = FindFormat(type.subtype, formats);
    if (!IsEqualGUID(type.majortype, mediaTypeVideo) || format == nullptr) return std::nullopt;
    const std::optional<VideoHeader> header = ReadVideoHeader(type);
    const bool usable = header && HasExpectedBits(*format, *header) && HasPicture(header->bitmap) &&
                        HasPossibleSize(header->bitmap, side);
    return usable ? header : std::nullopt;
}

bool IsAcceptedType(const DMO_MEDIA_TYPE& type, StreamSide side, std::span<const StreamFormat> formats) {
    const std::optional<VideoHeader> header = ReadUsableHeader(type, side, formats);
    return header && TargetFits(header->target, header->bitmap);
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
