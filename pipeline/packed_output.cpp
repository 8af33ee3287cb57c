#include "pipeline/packed_output.h"

#include <algorithm>
#include <cstring>

#include "pipeline/column_patterns.h"
#include "pipeline/output_constants.h"
#include "pipeline/overlay_rows.h"

namespace clarivex {
namespace {

constexpr uint8_t blackPair[4] = {0x10, 0x80, 0x10, 0x80};

// Dither by column, for even and odd rows: sixteenths in rows of video, eighths under the overlay.
constexpr Dither lumaDither[2] = {{12, 4, 4, 12}, {4, 12, 12, 4}};
constexpr Dither chromaDither[2] = {{4, 12, 12, 4}, {12, 4, 4, 12}};
constexpr Dither overlayChromaDither[2] = {{2, 6, 6, 2}, {6, 2, 2, 6}};

/// Patterns of one row parity.
struct RowPatterns {
    ColumnPattern luma;
    ColumnPattern chroma;
    ColumnPattern overlayLumaDither;
    ColumnPattern overlayChromaDither;
};

class PackedStage {
public:
    PackedStage(const Plane& target, const uint8_t* targetEnd, const PictureView& source,
                const OutputStageInputs& inputs)
        : target(target),
          targetEnd(targetEnd),
          source(source),
          inputs(inputs),
          kernels(inputs.kernels),
          width((std::min(source.luma.width, target.width) + 1) & ~1),
          height(std::min(source.luma.height, target.height)),
          useTiles(width * 3 <= inputs.tiles.Stride()),
          constants(MakeOutputConstants(inputs.params)),
          work(PackedNeedsWork(inputs.params, constants, inputs.noise.level)),
          noiseColumn(NoiseColumnOf(inputs.noise)),
          chroma(inputs.scratch.chroma.Prepare(width)),
          tonedLuma(inputs.scratch.tonedLuma.Prepare(width)),
          tonedChroma(inputs.scratch.tonedChroma.Prepare(width)) {
        for (size_t parity = 0; parity < 2; ++parity)
            patterns[parity] = {
                MakePattern(constants.c0 + noiseBias, lumaDither[parity]),
                MakePairPattern(constants.oU + noiseBias, constants.oV + noiseBias, chromaDither[parity]),
                MakePattern(0, overlayLumaDither[parity]), MakePattern(0, overlayChromaDither[parity])};
        overlayLuma = MakePattern(constants.c0 + noiseBias, noDither);
        overlayChroma = MakePairPattern(constants.oU + noiseBias, constants.oV + noiseBias, noDither);
        chromaGain = MakePairPattern(constants.gU, constants.gV, noDither);
    }

    void Run() {
        for (int32_t y = 0; y < height; y += 2) {
            const uint8_t* overlay[2] = {TileRow(y), TileRow(y + 1)};
            const bool copyPair = !work && overlay[0] == nullptr && overlay[1] == nullptr;
            for (int32_t row = 0; row < 2 && y + row < target.height; ++row) {
                WriteRow(y + row, copyPair, overlay[row]);
                FillMargin(y + row);
            }
        }
        if (height + 1 <= target.height) FillBlackRow();
    }

private:
    const uint8_t* TileRow(int32_t y) const { return useTiles ? inputs.tiles.Row(y) : nullptr; }

    void WriteRow(int32_t y, bool copy, const uint8_t* overlay) {
        const uint8_t* luma = source.luma.Row(y);
        BlendChroma(y);
        if (copy) {
            Store(y, luma, chroma);
            return;
        }
        if (overlay != nullptr)
            ToneUnderOverlay(y, luma, overlay);
        else
            Tone(y, luma);
        Store(y, tonedLuma, tonedChroma);
    }

    /// Even rows lean towards the chroma row above, odd rows towards the one below.
    void BlendChroma(int32_t y) {
        const int32_t pair = y & ~1;
        const int32_t current = pair / 2;
        int32_t neighbour = current;
        if (y % 2 == 0)
            neighbour = pair > 1 ? current - 1 : current;
        else if (pair < height - 2)
            neighbour = current + 1;
        const uint8_t* rows[4] = {source.third.Row(current), source.third.Row(neighbour), source.second.Row(current),
                                  source.second.Row(neighbour)};
        kernels.blendChromaRows(rows, chroma, width / 2);
    }

    void Tone(int32_t y, const uint8_t* luma) {
        const RowPatterns& row = patterns[static_cast<size_t>(y % 2)];
        kernels.toneLuma(luma, tonedLuma, width, Curve(), row.luma.Data(), LumaNoise(y), noiseColumn);
        kernels.toneChromaNoise(chroma, tonedChroma, width, chromaGain.Data(), row.chroma.Data(), ChromaNoise(y),
                                noiseColumn);
    }

    void ToneUnderOverlay(int32_t y, const uint8_t* luma, const uint8_t* groups) {
        const RowPatterns& row = patterns[static_cast<size_t>(y % 2)];
        const OverlayRow overlay = UnpackTileRow(groups, width, inputs.scratch);
        kernels.toneLumaOverlay(luma, tonedLuma, width, Curve(), overlayLuma.Data(), LumaNoise(y), noiseColumn,
                                overlay.keep, overlay.lumaTerms, row.overlayLumaDither.Data());
        kernels.toneChromaOverlay(chroma, tonedChroma, width, chromaGain.Data(), overlayChroma.Data(), ChromaNoise(y),
                                  noiseColumn, overlay.keep, overlay.chromaTerms, row.overlayChromaDither.Data());
    }

    LumaCurve Curve() const { return {constants.c3, constants.c2, constants.c1}; }
    const int16_t* LumaNoise(int32_t y) const { return inputs.noise.LumaRow(NoiseRowOf(inputs.noise, y)); }
    const int16_t* ChromaNoise(int32_t y) const { return inputs.noise.ChromaRow(NoiseRowOf(inputs.noise, y)); }

    /// Bytes that may be written to a row from its start on, within its stride and the buffer.
    int32_t RowBytes(int32_t y) const {
        const ptrdiff_t inBuffer = targetEnd - target.Row(y);
        return static_cast<int32_t>(std::clamp<ptrdiff_t>(inBuffer, 0, target.stride));
    }

    void Store(int32_t y, const uint8_t* luma, const uint8_t* chromaRow) {
        const int32_t columns = std::min(width, RowBytes(y) / 2);
        kernels.interleave(luma, chromaRow, target.Row(y), columns);
    }

    void FillBlack(int32_t y, int32_t pairs, int32_t firstByte) {
        const int32_t end = std::min(firstByte + 4 * pairs, RowBytes(y));
        uint8_t* row = target.Row(y);
        for (int32_t i = firstByte; i < end; ++i) row[i] = blackPair[i % 4];
    }

    void FillMargin(int32_t y) {
        if (target.stride > 2 * width) FillBlack(y, std::max((target.stride - 2 * width) >> 2, 1), 2 * width);
    }

    void FillBlackRow() { FillBlack(height, width / 2 + (target.stride > 2 * width ? 1 : 0), 0); }

    Plane target;
    const uint8_t* targetEnd;
    const PictureView& source;
    const OutputStageInputs& inputs;
    const KernelTable& kernels;
    int32_t width;
    int32_t height;
    bool useTiles;
    OutputConstants constants;
    bool work;
    int32_t noiseColumn;
    uint8_t* chroma;
    uint8_t* tonedLuma;
    uint8_t* tonedChroma;
    RowPatterns patterns[2];
    ColumnPattern overlayLuma;
    ColumnPattern overlayChroma;
    ColumnPattern chromaGain;
};

}  // namespace

void PackedOutputStage(const Plane& target, const uint8_t* targetEnd, const PictureView& source,
                       const OutputStageInputs& inputs) {
    if (source.luma.width > 0 && source.luma.height > 0) PackedStage(target, targetEnd, source, inputs).Run();
}

}  // namespace clarivex
