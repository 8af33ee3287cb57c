#include "pipeline/packed_output.h"

#include <algorithm>
#include <cstring>

#include "pipeline/output_constants.h"

namespace clarivex {
namespace {

constexpr uint8_t blackPair[4] = {0x10, 0x80, 0x10, 0x80};

constexpr StageDithers packedDithers = {.luma = {{12, 4, 4, 12}, {4, 12, 12, 4}},
                                        .chroma = {{4, 12, 12, 4}, {12, 4, 4, 12}},
                                        .overlayChroma = {{2, 6, 6, 2}, {6, 2, 2, 6}},
                                        .noisyChroma = true};

}  // namespace

PackedOutput::PackedOutput(const Plane& target, const uint8_t* targetEnd, const PictureView& source,
                           const OutputStageInputs& inputs)
    : target(target),
      targetEnd(targetEnd),
      source(source),
      kernels(inputs.kernels),
      width((std::min(source.luma.width, target.width) + 1) & ~1),
      height(width == 0 ? 0 : std::min(source.luma.height, target.height)),
      rowLength(targetEnd == nullptr ? 4 * ((target.width + 1) / 2) : target.stride),
      overlay(inputs.tiles, width, inputs.scratch),
      toner(inputs, packedDithers),
      work(PackedNeedsWork(inputs.params, inputs.noise.level)),
      chroma(inputs.scratch.chroma.Prepare(width)),
      tonedLuma(inputs.scratch.tonedLuma.Prepare(width)),
      tonedChroma(inputs.scratch.tonedChroma.Prepare(width)) {}

void PackedOutput::TakeLuma(int32_t y, const Plane& rows) {
    const int32_t count = std::min(rows.height, height - y);
    for (int32_t i = 0; i < count; ++i) TakeRow(y + i, rows.Row(i));
}

void PackedOutput::TakeRow(int32_t y, const uint8_t* row) {
    // Of two rows that share their chroma both are copied or none.
    if (overlay.Has(y)) {
        ToneUnderOverlay(y, row);
    } else if (work || overlay.Has(y ^ 1)) {
        Tone(y, row);
    } else {
        kernels.blendChromaRows(ChromaOf(y).data(), chroma, width / 2);
        Store(y, row, chroma);
    }
    FillMargin(y);
}

void PackedOutput::ToneUnderOverlay(int32_t y, const uint8_t* luma) {
    kernels.blendChromaRows(ChromaOf(y).data(), chroma, width / 2);
    const OverlayTerms terms = overlay.Terms(y);
    toner.LumaUnder(terms, y, luma, tonedLuma, width);
    toner.ChromaUnder(terms, y, chroma, tonedChroma, width);
    Store(y, tonedLuma, tonedChroma);
}

/// Straight into the target where it has room for the whole row.
void PackedOutput::Tone(int32_t y, const uint8_t* luma) {
    const ChromaRows rows = ChromaOf(y);
    if (RowBytes(y) >= 2 * width) return toner.Packed(y, luma, rows.data(), target.Row(y), width);
    kernels.blendChromaRows(rows.data(), chroma, width / 2);
    toner.Luma(y, luma, tonedLuma, width);
    toner.Chroma(y, chroma, tonedChroma, width);
    Store(y, tonedLuma, tonedChroma);
}

void PackedOutput::Finish() {
    if (height == 0 || height == target.height) return;
    if (height % 2 != 0) FillMargin(height);  // as of the second row of every pair
    FillBlack(height, width / 2 + (rowLength > 2 * width ? 1 : 0), 0);
}

/// Even rows lean towards the chroma row above, odd rows towards the one below.
PackedOutput::ChromaRows PackedOutput::ChromaOf(int32_t y) const {
    const int32_t pair = y & ~1;
    const int32_t current = pair / 2;
    int32_t neighbour = current;
    if (y % 2 == 0)
        neighbour = pair > 1 ? current - 1 : current;
    else if (pair < height - 2)
        neighbour = current + 1;
    return {source.third.Row(current), source.third.Row(neighbour), source.second.Row(current),
            source.second.Row(neighbour)};
}

/// Bytes that may be written to a row from its start on, within its stride and the buffer.
int32_t PackedOutput::RowBytes(int32_t y) const {
    if (targetEnd == nullptr) return rowLength;
    const ptrdiff_t inBuffer = targetEnd - target.Row(y);
    return static_cast<int32_t>(std::clamp<ptrdiff_t>(inBuffer, 0, rowLength));
}

void PackedOutput::Store(int32_t y, const uint8_t* luma, const uint8_t* chromaRow) {
    const int32_t columns = std::min(width, RowBytes(y) / 2);
    kernels.interleave(luma, chromaRow, target.Row(y), columns);
}

void PackedOutput::FillBlack(int32_t y, int32_t pairs, int32_t firstByte) {
    const int32_t end = std::min(firstByte + 4 * pairs, RowBytes(y));
    uint8_t* row = target.Row(y);
    for (int32_t i = firstByte; i < end; ++i) row[i] = blackPair[i % 4];
}

void PackedOutput::FillMargin(int32_t y) {
    if (rowLength > 2 * width) FillBlack(y, std::max((rowLength - 2 * width) >> 2, 1), 2 * width);
}

}  // namespace clarivex
