// A stream of pictures that goes through a frame path again and again, for the benches of whole frames.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "overlay/overlay.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/frame_pipeline.h"
#include "simd/kernel_table.h"

namespace clarivex {

struct NamedFormat {
    const char* name;
    PixelFormat format;
    int32_t bitCount;
};

inline constexpr std::array<NamedFormat, 3> formats{{
    {"yv12", PixelFormat::yv12, 12},
    {"iyuv", PixelFormat::iyuv, 12},
    {"yuy2", PixelFormat::yuy2, 16},
}};

inline constexpr std::array<FrameSize, 4> sizes{{{352, 288}, {640, 480}, {720, 576}, {1280, 720}}};

struct FrameCase {
    NamedFormat format;
    FrameSize size;
    bool scaled;
};

/// What a shaded, grained picture with edges in every direction has at a place.
inline uint8_t TextureAt(int32_t x, int32_t y, int32_t seed) {
    const double rings = std::sin((x - 150.0) * (x - 150.0) / 900.0 + (y - 90.0) * (y - 90.0) / 700.0);
    const uint32_t grain = (static_cast<uint32_t>(x) * 2654435761U + static_cast<uint32_t>(y + seed) * 40503U) >> 27;
    const int32_t block = ((x + seed) / 48 + y / 40) % 2 == 0 ? 30 : -30;
    return static_cast<uint8_t>(120 + 40 * rings + block + static_cast<int32_t>(grain) - 16);
}

inline size_t PictureBytes(const FrameSize& size, int32_t bitCount) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * static_cast<size_t>(bitCount) / 8;
}

/// A stream of a few pictures that repeat, played through a frame path of its own.
class FrameStream {
public:
    /// fonts  for the caption; without any none is drawn
    FrameStream(const FrameCase& frames, const KernelTable& kernels, std::unique_ptr<FontEngine> fonts = nullptr)
        : pipeline(process, std::move(fonts), kernels) {
        const FrameSize written = OutputSize(frames.size.width, frames.size.height, frames.scaled);
        request.format = frames.format.format;
        request.input = FormatOf(frames.size, frames.format.bitCount);
        request.source = request.input;
        request.output = FormatOf(written, frames.format.bitCount);
        request.sourceWidth = frames.size.width;
        request.sourceHeight = frames.size.height;
        request.scalingOn = frames.scaled;
        request.newStream = request.settingsDirty = true;
        output.resize(PictureBytes(written, frames.format.bitCount));
        for (size_t i = 0; i < pictures.size(); ++i) {
            pictures[i].resize(PictureBytes(frames.size, frames.format.bitCount));
            const int32_t rowBytes = frames.format.bitCount == 16 ? 2 * frames.size.width : frames.size.width;
            for (size_t at = 0; at < pictures[i].size(); ++at)
                pictures[i][at] = TextureAt(static_cast<int32_t>(at) % rowBytes, static_cast<int32_t>(at) / rowBytes,
                                            static_cast<int32_t>(7 * i));
        }
    }

    /// False when the frame path reports a failure.
    bool PlayOne() {
        const std::vector<uint8_t>& picture = pictures[framesPlayed++ % pictures.size()];
        const HRESULT result =
            pipeline.RunFrame(request, {output.data(), output.size()}, {picture.data(), picture.size()});
        request.newStream = request.settingsDirty = false;
        return result == S_OK;
    }

    /// The next frame is the first of a new stream.
    void StartStream() { request.newStream = true; }

private:
    static ImageFormat FormatOf(const FrameSize& size, int32_t bitCount) {
        ImageFormat format;
        format.readable = true;
        format.width = size.width;
        format.height = size.height;
        format.bitCount = bitCount;
        return format;
    }

    ProcessState process;
    FramePipeline pipeline;
    FrameRequest request;
    std::array<std::vector<uint8_t>, 4> pictures;
    std::vector<uint8_t> output;
    size_t framesPlayed = 0;
};

}  // namespace clarivex
