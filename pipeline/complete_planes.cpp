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

void CompleteRow(uint8_t* row, int32_t y, int32_t width, const PlaneView& source, const PlanePart& part,
                 uint8_t black) {
    if (y < part.height) {
        FillFrom(row, part.width, width, part.repeatLast ? row[part.width - 1] : black);
        return;
    }
    const int32_t shared = y < source.height ? std::min(source.width, width) : 0;
    if (shared > 0) std::memcpy(row, source.Row(y), static_cast<size_t>(shared));
    FillFrom(row, shared, width, black);
}

void CompletePlane(const Plane& picture, const PlaneView& source, const PlanePart& part) {
    for (int32_t y = 0; y < picture.height; ++y)
        CompleteRow(picture.Row(y), y, picture.width, source, part, neutralChroma);
}

PlanePart ChromaPart(const ImagePlanes& picture, const PictureView& source, const FrameSize& written) {
    if (written.height == 0) return {0, 0, false};
    const bool wider = written.width > source.luma.width;
    const bool higher = written.height > source.luma.height;
    return {wider ? 3 * ((source.second.width + 1) >> 1) : source.second.width,
            higher ? picture.second.height : source.second.height, wider};
}

}  // namespace

void LumaCompletion::Complete(int32_t y, const Plane& rows) const {
    const bool odd = size.width % 2 != 0;
    if (!odd && written.width >= size.width && y + rows.height <= written.height) return;
    const PlanePart part{written.width, written.height, written.width > source.width};
    for (int32_t i = 0; i < rows.height; ++i) {
        uint8_t* row = rows.Row(i);
        CompleteRow(row, y + i, size.width, source, part, blackLuma);
        // Output stages take luma in pairs: an odd width goes on with its last column.
        if (odd) row[size.width] = row[size.width - 1];
    }
}

void CompletingSink::TakeLuma(int32_t y, const Plane& rows) {
    completion.Complete(y, rows);
    next.TakeLuma(y, rows);
}

void CompletingSink::Finish(uint8_t* row) {
    const int32_t width = completion.size.width;
    for (int32_t y = completion.written.height; y < completion.size.height; ++y) TakeLuma(y, {row, width, 1, width});
}

void CompleteChroma(const ImagePlanes& picture, const PictureView& source, const FrameSize& written) {
    const PlanePart chroma = ChromaPart(picture, source, written);
    CompletePlane(picture.second, source.second, chroma);
    CompletePlane(picture.third, source.third, chroma);
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
