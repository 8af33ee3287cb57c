// Media types: owning them, reading the video header out of them, and which ones the plug-in takes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "pipeline/frame_request.h"
#include "platform/guids.h"
#include "platform/win32.h"

namespace clarivex {

/// Subtypes that the plug-in takes and gives, in the order in which they are offered.
inline constexpr std::array<GUID, 3> offeredSubtypes = {mediaSubtypeYv12, mediaSubtypeYuy2, mediaSubtypeIyuv};

/// A media type with its format block. Empty at first.
class MediaType {
public:
    MediaType() = default;
    ~MediaType() { Clear(); }
    MediaType(const MediaType&) = delete;
    MediaType& operator=(const MediaType&) = delete;

    /// Takes a deep copy in place of what was held. On failure, the code of which is returned, nothing is held.
    HRESULT Assign(const DMO_MEDIA_TYPE& source);

    /// Frees what is held and leaves the type all zero.
    void Clear();

    /// The major type is not all zero.
    bool IsSet() const { return !IsEqualGUID(type.majortype, noGuid); }

    const DMO_MEDIA_TYPE& Get() const { return type; }
    DMO_MEDIA_TYPE& Get() { return type; }

private:
    DMO_MEDIA_TYPE type = {};
};

/// Which of the two video headers a type carries.
enum class HeaderKind { videoInfo, videoInfo2 };

/// What both headers say, and what only the second one does (0 for the first).
struct VideoHeader {
    HeaderKind kind = HeaderKind::videoInfo;
    RECT target = {};
    DWORD bitRate = 0;
    DWORD aspectX = 0;
    DWORD aspectY = 0;
    BITMAPINFOHEADER bitmap = {};
};

/// The video header of a type. Nothing when the format type is another one, or the format block is missing or too short.
std::optional<VideoHeader> ReadVideoHeader(const DMO_MEDIA_TYPE& type);

/// Writes target rectangle, picture size and image bytes back into the header of a type that has one. Clears the
/// interlace flags of a VIDEOINFOHEADER2.
void WriteVideoHeader(DMO_MEDIA_TYPE& type, const VideoHeader& header);

/// Where a type is to be used. Inputs must leave room for the enlarged picture.
enum class StreamSide { input, output };

/// Whether the plug-in takes a type: video of a known subtype with a whole header, a picture that is not empty, and a
/// target rectangle that is no larger than it. Refuses also what no caller means: a width below 1, a height of -2³¹,
/// rectangles turned round or with negative corners, pictures beyond the limits of the frame path, and image bytes
/// beyond 31 bits.
bool IsAcceptedType(const DMO_MEDIA_TYPE& type, StreamSide side);

/// Bytes of a picture whose rows are whole 32-bit words; a negative height counts as positive.
int64_t ImageBytes(const BITMAPINFOHEADER& bitmap);

/// Image bytes of an accepted type, 0 for one without a header.
uint32_t ImageBytes(const DMO_MEDIA_TYPE& type);

/// What the frame path needs to know of a type.
ImageFormat FormatOf(const DMO_MEDIA_TYPE& type);
PixelFormat PixelFormatOf(const DMO_MEDIA_TYPE& type);

}  // namespace clarivex
