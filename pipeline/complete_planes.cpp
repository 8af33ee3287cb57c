#include "pipeline/complete_planes.h"

#include <algorithm>
#include <cstring>

namespace clarivex {
namespace {

constexpr uint8_t blackLuma = 16;
constexpr uint8_t neutralChroma = 128;

/// The written part of one plane, and what stands right of it.
struct PlanePart {
    int32_t width;
    int32_t height;
    bool repeatLast;  // repeat the last written column instead of black
};

void FillFrom(uint8_t* row, int32_t first, int32_t width, uint8_t value) {
    if (first < width) std::memset(row + first, value, static_cast<size_t>(width - first));
}

void CompletePlane(const Plane& picture, const PlaneView& source, const PlanePart& part, uint8_t black) {
    const int32_t writtenRows = std::min(part.height, picture.height);
    for (int32_t y = 0; y < writtenRows; ++y) {
        uint8_t* row = picture.Row(y);
        FillFrom(row, part.width, picture.width, part.repeatLast ? row[part.width - 1] : black);
    }
    for (int32_t y = writtenRows; y < picture.height; ++y) {
        const int32_t shared = y < source.height ? std::min(source.width, picture.width) : 0;
        if (shared > 0) std::memcpy(picture.Row(y), source.Row(y), static_cast<size_t>(shared));
        FillFrom(picture.Row(y), shared, picture.width, black);
    }
}

/// Output stages take luma in pairs: an odd width goes on with its last column.
void RepeatOddColumn(const Plane& luma) {
    if (luma.width % 2 == 0) return;
    for (int32_t y = 0; y < luma.height; ++y) luma.Row(y)[luma.width] = luma.Row(y)[luma.width - 1];
}

PlanePart ChromaPart(const ImagePlanes& picture, const PictureView& source, const WrittenPart& written) {
    if (written.height == 0) return {0, 0, false};
    const bool wider = written.width > source.luma.width;
    const bool higher = written.height > source.luma.height;
    return {wider ? 3 * ((source.second.width + 1) >> 1) : source.second.width,
            higher ? picture.second.height : source.second.height, wider};
}

}  // namespace

void CompletePlanes(const ImagePlanes& picture, const PictureView& source, const WrittenPart& written) {
    CompletePlane(picture.luma, source.luma, {written.width, written.height, written.width > source.luma.width},
                  blackLuma);
    RepeatOddColumn(picture.luma);
    if (!written.chroma) return;
    const PlanePart chroma = ChromaPart(picture, source, written);
    CompletePlane(picture.second, source.second, chroma, neutralChroma);
    CompletePlane(picture.third, source.third, chroma, neutralChroma);
}

void ShowPackedSource(const Plane& target, const PlaneView& source) {
    constexpr uint8_t blackPair[4] = {blackLuma, neutralChroma, blackLuma, neutralChroma};
    const int32_t pairs = (target.width + 1) / 2;
    for (int32_t y = 0; y < target.height; ++y) {
        const int32_t shared = y < source.height ? std::min(pairs, (source.width + 1) / 2) : 0;
        if (shared > 0) std::memcpy(target.Row(y), source.Row(y), 4 * static_cast<size_t>(shared));
        for (int32_t pair = shared; pair < pairs; ++pair) std::memcpy(target.Row(y) + 4 * pair, blackPair, 4);
    }
}

}  // namespace clarivex
