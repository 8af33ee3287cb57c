// Media types of video, as tests want them: a good one to start from, with every field open.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/guids.h"
#include "platform/win32.h"

namespace clarivex {

/// A type and its format block. The fields are to be changed before Type() is called; the type it gives points into
/// this object.
template <class Header>
class VideoTypeOf {
public:
    GUID majorType = mediaTypeVideo;
    GUID subtype = mediaSubtypeYv12;
    GUID formatType;
    Header header = {};
    ULONG formatBytes = sizeof(Header);
    bool hasFormat = true;

    VideoTypeOf(int32_t width, int32_t height, const GUID& format, const GUID& pixels)
        : subtype(pixels), formatType(format) {
        BITMAPINFOHEADER& bitmap = header.bmiHeader;
        bitmap.biSize = sizeof bitmap;
        bitmap.biWidth = width;
        bitmap.biHeight = height;
        bitmap.biPlanes = 1;
        bitmap.biBitCount = IsEqualGUID(pixels, mediaSubtypeYuy2) ? 16 : 12;
    }

    BITMAPINFOHEADER& Bitmap() { return header.bmiHeader; }
    RECT& Target() { return header.rcTarget; }

    const DMO_MEDIA_TYPE* Type() {
        block.assign(formatBytes, 0);  // exactly sized: a read behind it is seen
        std::copy_n(reinterpret_cast<const BYTE*>(&header), std::min<size_t>(formatBytes, sizeof header),
                    block.begin());
        type = {};
        type.majortype = majorType;
        type.subtype = subtype;
        type.formattype = formatType;
        type.lSampleSize = 4711;
        type.cbFormat = hasFormat ? formatBytes : 0;
        type.pbFormat = hasFormat ? block.data() : nullptr;
        return &type;
    }

private:
    std::vector<BYTE> block;
    DMO_MEDIA_TYPE type = {};
};

struct VideoInfoType : VideoTypeOf<VIDEOINFOHEADER> {
    VideoInfoType(int32_t width, int32_t height, const GUID& pixels = mediaSubtypeYv12)
        : VideoTypeOf(width, height, formatVideoInfo, pixels) {}
};

struct VideoInfo2Type : VideoTypeOf<VIDEOINFOHEADER2> {
    VideoInfo2Type(int32_t width, int32_t height, const GUID& pixels = mediaSubtypeYv12)
        : VideoTypeOf(width, height, formatVideoInfo2, pixels) {}
};

/// Receives a type from the media object and frees its format block.
class ReceivedType {
public:
    ReceivedType() = default;
    ~ReceivedType() { MoFreeMediaType(&type); }
    ReceivedType(const ReceivedType&) = delete;
    ReceivedType& operator=(const ReceivedType&) = delete;

    /// Frees what was received before.
    DMO_MEDIA_TYPE* Out() {
        MoFreeMediaType(&type);
        type = {};
        return &type;
    }
    const DMO_MEDIA_TYPE& Get() const { return type; }

    /// The format block as the header it should hold; all zero when it is shorter.
    template <class Header>
    Header As() const {
        Header header = {};
        if (type.cbFormat >= sizeof header) std::memcpy(&header, type.pbFormat, sizeof header);
        return header;
    }

private:
    DMO_MEDIA_TYPE type = {};
};

}  // namespace clarivex
