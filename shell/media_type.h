// Media types: owning them, reading the video header out of them, and which ones can be used.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "pipeline/frame_request.h"
#include "platform/guids.h"
#include "platform/win32.h"

namespace clarivex {

/// A format that media objects take and give.
///
/// firstHeaderBits  bits a pixel that a VIDEOINFOHEADER must tell of it; 0 where any will do
struct StreamFormat {
    GUID subtype;
    PixelFormat pixels = PixelFormat::other;
    WORD firstHeaderBits = 0;
};

/// What the player's object offers, in this order. Only YV12 in the first header is held to its bits a pixel: kept so that
/// types are taken or refused as they were in earlier releases.
inline constexpr std::array<StreamFormat, 3> playerFormats = {{{mediaSubtypeYv12, PixelFormat::yv12, 12},
                                                               {mediaSubtypeYuy2, PixelFormat::yuy2},
                                                               {mediaSubtypeIyuv, PixelFormat::iyuv}}};

/// What the video effect offers: what today's decoders give first comes first.
inline constexpr std::array<StreamFormat, 4> effectFormats = {{{mediaSubtypeNv12, PixelFormat::nv12},
                                                               {mediaSubtypeYv12, PixelFormat::yv12},
                                                               {mediaSubtypeIyuv, PixelFormat::iyuv},
                                                               {mediaSubtypeYuy2, PixelFormat::yuy2}}};

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
    RECT source = {};
    RECT target = {};
    DWORD bitRate = 0;
    DWORD aspectX = 0;
    DWORD aspectY = 0;
    DWORD controlFlags = 0;
    BITMAPINFOHEADER bitmap = {};
};

/// The video header of a type. Nothing when the format type is another one, or the format block is missing or too short.
std::optional<VideoHeader> ReadVideoHeader(const DMO_MEDIA_TYPE& type);

/// Writes rectangles, picture size and image bytes back into the header of a type that has the same kind of header, and the
/// control flags of a VIDEOINFOHEADER2, whose interlace flags are cleared.
void WriteVideoHeader(DMO_MEDIA_TYPE& type, const VideoHeader& header);

/// Makes a type like another one with this header, which may be a VIDEOINFOHEADER2 in place of the other's VIDEOINFOHEADER:
/// a picture of square pixels then. Sample and image bytes are the header's. What `target` held is not freed.
///
/// like    has a header
/// result  of MoCopyMediaType
HRESULT MakeVideoType(const DMO_MEDIA_TYPE& like, const VideoHeader& header, DMO_MEDIA_TYPE& target);

/// Whether a header tells how its colours are made, and how to tell those of standard definition.
bool TellsColours(const VideoHeader& header);
void TellStandardColours(VideoHeader& header);

/// Where a type is to be used. Inputs must leave room for the enlarged picture.
enum class StreamSide { input, output };

/// Whether a type can be used: video of one of the formats with a whole header, a picture that is not empty, and a
/// target rectangle that is no larger than it. Refuses also what no caller means: a width below 1, a height of -2³¹,
/// rectangles turned round or with negative corners, pictures beyond the limits of the frame path, and image bytes
/// beyond 31 bits.
bool IsAcceptedType(const DMO_MEDIA_TYPE& type, StreamSide side, std::span<const StreamFormat> formats);

/// The header of a type that can be used, whatever its rectangles; nothing for one that cannot.
std::optional<VideoHeader> ReadUsableHeader(const DMO_MEDIA_TYPE& type, StreamSide side,
                                            std::span<const StreamFormat> formats);

/// Bytes of a picture whose rows are whole 32-bit words; a negative height counts as positive.
int64_t ImageBytes(const BITMAPINFOHEADER& bitmap);

/// Image bytes of an accepted type, 0 for one without a header.
uint32_t ImageBytes(const DMO_MEDIA_TYPE& type);

/// What the frame path needs to know of a type.
ImageFormat FormatOf(const DMO_MEDIA_TYPE& type);

/// `other` for a subtype that is none of the formats.
PixelFormat PixelFormatOf(const DMO_MEDIA_TYPE& type, std::span<const StreamFormat> formats);

/// Tells the debugger the size of a picture.
void TraceSize(const DMO_MEDIA_TYPE& type);

}  // namespace clarivex
