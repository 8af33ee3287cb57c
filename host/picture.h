// The size and formats of a picture, in the words that all of the command line uses.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace clarivex {

constexpr int32_t largestPictureSide = 8192;  ///< that the command line works on, in luma samples

/// A size in luma samples, both at least 1. Subsampled chroma is rounded up.
struct PictureSize {
    int32_t width = 0;
    int32_t height = 0;

    int32_t ChromaWidth() const { return (width + 1) / 2; }
    int32_t ChromaHeight() const { return (height + 1) / 2; }
    size_t LumaBytes() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
    size_t ChromaBytes() const { return static_cast<size_t>(ChromaWidth()) * static_cast<size_t>(ChromaHeight()); }
    size_t PlanarBytes() const { return LumaBytes() + 2 * ChromaBytes(); }  ///< of a whole 4:2:0 picture

    bool operator==(const PictureSize&) const = default;
};

/// A fraction of two whole numbers; 0:0 where it is not known.
struct Ratio {
    uint32_t numerator = 0;
    uint32_t denominator = 0;

    bool Known() const { return numerator != 0 && denominator != 0; }
    bool operator==(const Ratio&) const = default;
};

/// The sample layouts that the media object takes.
enum class SampleFormat { yv12, iyuv, yuy2 };

/// Where a 4:2:0 chroma sample stands among its four luma samples: in their middle, between the two on the left, or on the
/// upper left one.
enum class ChromaSite { unknown, center, left, topLeft };

/// Which levels are black and white: 0 and 255, or 16 and 235 in luma and 16 … 240 in chroma. Video range where a stream
/// says nothing.
enum class ColourRange { video, full };

/// Luma, U and V of one picture, each without gaps between its rows.
using PicturePlanes = std::array<std::span<const uint8_t>, 3>;

/// The same where a picture is to be put.
using WritablePlanes = std::array<std::span<uint8_t>, 3>;

/// The planes of a 4:2:0 picture in one piece: Y, U, V, size.PlanarBytes() in all.
template <class Sample>
std::array<std::span<Sample>, 3> PlanesIn(PictureSize size, std::span<Sample> samples) {
    const size_t luma = size.LumaBytes();
    const size_t chroma = size.ChromaBytes();
    return {samples.subspan(0, luma), samples.subspan(luma, chroma), samples.subspan(luma + chroma, chroma)};
}

/// A 4:2:0 picture in one piece, its planes in the order Y, U, V. Owns nothing.
struct PlanarPicture {
    PictureSize size;
    std::span<const uint8_t> samples;  ///< size.PlanarBytes()

    PicturePlanes Planes() const { return PlanesIn(size, samples); }
};

}  // namespace clarivex
