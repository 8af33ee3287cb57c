#include "pipeline/planar_output.h"

#include <algorithm>
#include <cstring>

#include "pipeline/output_constants.h"

namespace clarivex {
namespace {

constexpr uint8_t blackLuma = 0x10;
constexpr uint8_t neutralChroma = 0x80;

constexpr Columns4 toNearest{8, 8, 8, 8};
constexpr Columns4 overlayChromaDither{2, 6, 6, 2};  // chroma rows belong to even rows of luma
constexpr StageDithers planarDithers = {.luma = {{4, 12, 4, 12}, {12, 4, 12, 4}},
                                        .chroma = {toNearest, toNearest},
                                        .overlayChroma = {overlayChromaDither, overlayChromaDither},
                                        .noisyChroma = false};

}  // namespace

PlanarOutput::PlanarOutput(const ImagePlanes& target, const uint8_t* targetEnd, const PictureView& source,
                           const OutputStageInputs& inputs)
    : target(target),
      targetEnd(targetEnd),
      source(source),
      kernels(inputs.kernels),
      scratch(inputs.scratch),
      width(std::min(source.luma.width, target.luma.width)),
      height(std::min(source.luma.height, target.luma.height)),
      chromaWidth((width + 1) >> 1),
      overlay(inputs.tiles, 2 * chromaWidth, scratch),
      toner(inputs, planarDithers),
      work(PlanarNeedsWork(inputs.params, inputs.noise.level)) {}

void PlanarOutput::TakeLuma(int32_t y, const Plane& rows) {
    const int32_t count = std::min(rows.height, height - y);
    for (int32_t i = 0; i < count; ++i) ToneLuma(y + i, rows.Row(i));
}

void PlanarOutput::ToneLuma(int32_t y, const uint8_t* row) {
    uint8_t* out = target.luma.Row(y);
    const int32_t columns = LumaColumns(out);
    if (overlay.Has(y))
        toner.LumaUnder(overlay.Terms(y), y, row, out, columns);
    else if (work)
        toner.Luma(y, row, out, columns);
    else
        std::memcpy(out, row, static_cast<size_t>(columns));
    FillMargin(target.luma, y, 2 * chromaWidth, blackLuma);
}

void PlanarOutput::Finish() {
    WriteSecondPlane();
    WriteThirdPlane();
}

/// Samples that may be written to a row from its start on.
ptrdiff_t PlanarOutput::RowLength(const Plane& plane, const uint8_t* row) const {
    return targetEnd == nullptr ? plane.width : std::min<ptrdiff_t>(plane.stride, targetEnd - row);
}

/// An odd width is written as an even one where the row and the buffer have room.
int32_t PlanarOutput::LumaColumns(const uint8_t* out) const {
    const int32_t even = 2 * chromaWidth;
    return even <= RowLength(target.luma, out) ? even : width;
}

/// The overlay's chroma belongs to both planes, so rows under it are made here for the third plane too.
void PlanarOutput::WriteSecondPlane() {
    for (int32_t y = 0; y < height; y += 2) {
        if (overlay.Has(y))
            ToneChromaUnderOverlay(y);
        else
            WriteChromaRow(y, source.second.Row(y / 2), target.second.Row(y / 2));
        FillMargin(target.second, y / 2, chromaWidth, neutralChroma);
    }
}

void PlanarOutput::WriteThirdPlane() {
    for (int32_t y = 0; y < height; y += 2) {
        if (!overlay.Has(y)) WriteChromaRow(y, source.third.Row(y / 2), target.third.Row(y / 2));
        FillMargin(target.third, y / 2, chromaWidth, neutralChroma);
    }
}

void PlanarOutput::WriteChromaRow(int32_t y, const uint8_t* in, uint8_t* out) {
    if (work)
        toner.Chroma(y, in, out, chromaWidth);
    else
        std::memmove(out, in, static_cast<size_t>(chromaWidth));  // a host may give one buffer for both
}

void PlanarOutput::ToneChromaUnderOverlay(int32_t y) {
    const int32_t samples = 2 * chromaWidth;
    uint8_t* mixed = scratch.chroma.Prepare(samples);
    uint8_t* toned = scratch.tonedChroma.Prepare(samples);
    kernels.interleave(source.third.Row(y / 2), source.second.Row(y / 2), mixed, chromaWidth);
    toner.ChromaUnder(overlay.ChromaTerms(y), y, mixed, toned, samples);
    uint8_t* second = target.second.Row(y / 2);
    uint8_t* third = target.third.Row(y / 2);
    for (int32_t x = 0; x < chromaWidth; ++x) {
        third[x] = toned[2 * x];
        second[x] = toned[2 * x + 1];
    }
}

void PlanarOutput::FillMargin(const Plane& plane, int32_t y, int32_t firstColumn, uint8_t value) const {
    uint8_t* row = plane.Row(y);
    const ptrdiff_t room = RowLength(plane, row) - firstColumn;
    if (room > 0) std::memset(row + firstColumn, value, static_cast<size_t>(room));
}

}  // namespace clarivex
