// Fills and reads VIDEOINFOHEADER2 media types.
#include "host/video_type.h"

#include <cstring>
#include <numeric>

#include "platform/guids.h"
#include "runtime/ticks.h"

namespace clarivex {

namespace {

struct FormatNames {
    const GUID& subtype;
    uint32_t fourCharacters;  // first letter lowest
    uint16_t bitsPerSample;
};

constexpr uint32_t FourCharacters(const char (&letters)[5]) {
    uint32_t code = 0;
    for (int i = 3; i >= 0; --i) code = code << 8 | static_cast<uint8_t>(letters[i]);
    return code;
}

FormatNames NamesOf(SampleFormat format) {
    switch (format) {
        case SampleFormat::yuy2: return {mediaSubtypeYuy2, FourCharacters("YUY2"), 16};
        case SampleFormat::iyuv: return {mediaSubtypeIyuv, FourCharacters("IYUV"), 12};
        default: return {mediaSubtypeYv12, FourCharacters("YV12"), 12};
    }
}

/// Rows of whole 32-bit words, as the media object counts them.
uint32_t ImageBytes(PictureSize size, uint32_t bitsPerSample) {
    const uint32_t rowBits = static_cast<uint32_t>(size.width) * bitsPerSample;
    return ((rowBits + 31) & ~31u) / 8 * static_cast<uint32_t>(size.height);
}

BITMAPINFOHEADER BitmapHeader(const VideoFormat& format) {
    const FormatNames names = NamesOf(format.pixelFormat);
    BITMAPINFOHEADER bitmap = {};
    bitmap.biSize = sizeof bitmap;
    bitmap.biWidth = format.size.width;
    bitmap.biHeight = format.size.height;
    bitmap.biPlanes = 1;
    bitmap.biBitCount = names.bitsPerSample;
    bitmap.biCompression = names.fourCharacters;
    bitmap.biSizeImage = ImageBytes(format.size, names.bitsPerSample);
    return bitmap;
}

int64_t AverageTicks(Ratio frameRate) {
    if (!frameRate.Known()) return 0;
    return (ticksPerSecond * frameRate.denominator + frameRate.numerator / 2) / frameRate.numerator;
}

}  // namespace

Ratio PictureAspect(PictureSize size, Ratio sampleAspect) {
    if (!sampleAspect.Known()) return {};
    uint64_t x = uint64_t{sampleAspect.numerator} * static_cast<uint32_t>(size.width);
    uint64_t y = uint64_t{sampleAspect.denominator} * static_cast<uint32_t>(size.height);
    const uint64_t divisor = std::gcd(x, y);
    x /= divisor;
    y /= divisor;
    while ((x | y) > UINT32_MAX) {
        x >>= 1;
        y >>= 1;
    }
    if (x == 0 || y == 0) return {};  // no such shape can be shown
    return {static_cast<uint32_t>(x), static_cast<uint32_t>(y)};
}

VideoType::VideoType(const VideoFormat& format) {
    const Ratio aspect = PictureAspect(format.size, format.sampleAspect);
    header.AvgTimePerFrame = AverageTicks(format.frameRate);
    header.dwPictAspectRatioX = aspect.numerator;
    header.dwPictAspectRatioY = aspect.denominator;
    header.bmiHeader = BitmapHeader(format);

    type.majortype = mediaTypeVideo;
    type.subtype = NamesOf(format.pixelFormat).subtype;
    type.bFixedSizeSamples = TRUE;
    type.lSampleSize = header.bmiHeader.biSizeImage;
    type.formattype = formatVideoInfo2;
    type.cbFormat = sizeof header;
    type.pbFormat = reinterpret_cast<BYTE*>(&header);
}

std::optional<PictureSize> PictureSizeIn(const DMO_MEDIA_TYPE& type, SampleFormat format) {
    if (!IsEqualGUID(type.majortype, mediaTypeVideo) || !IsEqualGUID(type.subtype, NamesOf(format).subtype) ||
        !IsEqualGUID(type.formattype, formatVideoInfo2) || !type.pbFormat || type.cbFormat < sizeof(VIDEOINFOHEADER2))
        return std::nullopt;
    VIDEOINFOHEADER2 header;
    std::memcpy(&header, type.pbFormat, sizeof header);
    const int32_t width = header.bmiHeader.biWidth;
    const int32_t height = header.bmiHeader.biHeight;
    if (width < 1 || height == 0 || height == INT32_MIN) return std::nullopt;
    return PictureSize{width, height < 0 ? -height : height};
}

}  // namespace clarivex
