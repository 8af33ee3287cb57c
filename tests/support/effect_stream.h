// A host of the video effect: types with rectangles, buffers with the picture anywhere in them, and frames through both.
#pragma once

#include <clarivex/clarivex.h>

#include <utility>

#include "tests/library/library_stream.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {

/// The formats of the effect in the order in which it offers them, and what the C interface calls them.
struct EffectFormat {
    GUID subtype;
    int32_t format;
};
inline constexpr EffectFormat effectFormatsKnown[] = {{mediaSubtypeNv12, CVX_FORMAT_NV12},
                                                      {mediaSubtypeYv12, CVX_FORMAT_YV12},
                                                      {mediaSubtypeIyuv, CVX_FORMAT_I420},
                                                      {mediaSubtypeYuy2, CVX_FORMAT_YUY2}};

/// Where a picture stands in a buffer.
struct HostRoom {
    int32_t left = 0, top = 0;     ///< even
    int32_t right = 0, below = 0;  ///< samples of a row behind the picture, and rows below it

    RECT RectOf(const FrameSize& size) const { return {left, top, left + size.width, top + size.height}; }
    int32_t RowSamples(const FrameSize& size) const { return (left + size.width + right + 1) / 2 * 2; }
    int32_t Rows(const FrameSize& size) const { return top + size.height + below; }
};

/// Where a byte of a plane stands, planes and bytes as the C interface counts them.
inline size_t PlaceInRoom(const PictureKind& kind, const HostRoom& room, int32_t plane, int32_t x, int32_t y) {
    const int32_t row = room.RowSamples(kind.size), rows = room.Rows(kind.size);
    if (kind.format == CVX_FORMAT_YUY2) return static_cast<size_t>((room.top + y) * 2 * row + 2 * room.left + x);
    if (plane == 0) return static_cast<size_t>((room.top + y) * row + room.left + x);
    const bool pairs = kind.format == CVX_FORMAT_NV12;
    const int32_t length = pairs ? row : row / 2, left = pairs ? room.left : room.left / 2;
    return static_cast<size_t>(row * rows + ((plane - 1) * ((rows + 1) / 2) + room.top / 2 + y) * length + left + x);
}

inline size_t BytesOfRoom(const PictureKind& kind, const HostRoom& room) {
    const int32_t row = room.RowSamples(kind.size), rows = room.Rows(kind.size);
    return static_cast<size_t>(kind.format == CVX_FORMAT_YUY2 ? 2 * row * rows : row * rows + row * ((rows + 1) / 2));
}

/// A type of the picture in its room; without rectangles where they would say nothing.
template <class Type>
Type TypeInRoom(const FrameSize& size, const HostRoom& room, const GUID& subtype) {
    Type type(room.RowSamples(size), room.Rows(size), subtype);
    if (room.RowSamples(size) != size.width || room.Rows(size) != size.height) type.Target() = room.RectOf(size);
    return type;
}

/// One stream through one effect.
template <class Type = VideoInfo2Type>
class EffectStream {
public:
    EffectStream(IMediaObject& media, const EffectFormat& format, const FrameSize& size, const HostRoom& in,
                 const HostRoom& out)
        : media(media), source({size, format.format}), in(in), out(out) {
        ReceivedType offered;
        Require(media.SetInputType(0, TypeInRoom<Type>(size, in, format.subtype).Type(), 0), "input refused");
        Require(media.GetOutputType(0, 0, offered.Out()), "nothing offered");
        const RECT rect = offered.As<VIDEOINFOHEADER>().rcTarget;
        target = {{rect.right, rect.bottom}, format.format};
        Require(media.SetOutputType(0, TypeInRoom<Type>(target.size, out, format.subtype).Type(), 0), "output refused");
    }

    /// The target's bytes; what stands around the picture has to stay.
    std::vector<uint8_t> Play(const GuardedPicture& picture) {
        constexpr uint8_t filler = 0x5B;
        const size_t inBytes = BytesOfRoom(source, in), outBytes = BytesOfRoom(target, out);
        const GuardedPages inPages(inBytes), outPages(outBytes);
        FakeBuffer from(inPages.Last(inBytes), filler), to(outPages.Last(outBytes), filler);
        picture.ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t byte) {
            from.Bytes()[PlaceInRoom(source, in, plane, x, y)] = byte;
        });
        DMO_OUTPUT_DATA_BUFFER output = {&to, 0, 0, 0};
        Require(media.ProcessInput(0, &from, 0, 0, 0), "input not taken");
        Require(media.ProcessOutput(0, 1, &output, nullptr), "no frame");
        std::vector<uint8_t> samples;
        GuardedPicture(target).ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t) {
            uint8_t& byte = to.Bytes()[PlaceInRoom(target, out, plane, x, y)];
            samples.push_back(std::exchange(byte, filler));
        });
        Require(to.HoldsOnly(filler) ? S_OK : E_FAIL, "bytes outside the picture were written");
        return samples;
    }

    const PictureKind& Target() const { return target; }

    /// The next frames of the synthetic video.
    std::vector<uint8_t> PlayFrames(int32_t first, int32_t count) {
        std::vector<uint8_t> all;
        GuardedPicture picture(source);
        for (int32_t frame = first; frame < first + count; ++frame) {
            picture.Draw(frame);
            const auto samples = Play(picture);
            all.insert(all.end(), samples.begin(), samples.end());
        }
        return all;
    }

private:
    IMediaObject& media;
    PictureKind source, target;
    HostRoom in, out;
};

/// What the C interface makes of the same frames with the effect's settings.
inline std::vector<uint8_t> LibraryFrames(const EffectFormat& format, const FrameSize& size, bool enlarged,
                                          int32_t count) {
    cvx_settings settings = Defaults();
    settings.mode = enlarged ? CVX_MODE_ALWAYS : CVX_MODE_NEVER;
    settings.caption = 1;
    const PictureKind kind{size, format.format};
    return Play(*MakeContext(kind, settings), kind, 0, count);
}

}  // namespace clarivex
