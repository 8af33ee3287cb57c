#include "pipeline/planar_output.h"

#include <algorithm>
#include <cstring>

#include "pipeline/column_patterns.h"
#include "pipeline/output_constants.h"
#include "pipeline/overlay_rows.h"

namespace clarivex {
namespace {

constexpr uint8_t blackLuma = 0x10;
constexpr uint8_t neutralChroma = 0x80;

// Dither by column, for even and odd rows: sixteenths in rows of video, eighths under the overlay.
constexpr Dither lumaDither[2] = {{4, 12, 4, 12}, {12, 4, 12, 4}};
constexpr Dither overlayChromaDither{2, 6, 6, 2};  // chroma rows belong to even rows of luma
constexpr int32_t chromaRounding = 8;

class PlanarStage {
public:
    PlanarStage(const ImagePlanes& target, const uint8_t* targetEnd, const PictureView& source,
                const OutputStageInputs& inputs)
        : target(target),
          targetEnd(targetEnd),
          source(source),
          inputs(inputs),
          kernels(inputs.kernels),
          width(std::min(source.luma.width, target.luma.width)),
          height(std::min(source.luma.height, target.luma.height)),
          chromaWidth((width + 1) >> 1),
          useTiles(chromaWidth * 6 <= inputs.tiles.Stride()),
          constants(MakeOutputConstants(inputs.params)),
          work(PlanarNeedsWork(inputs.params, inputs.noise.level)),
          noiseColumn(NoiseColumnOf(inputs.noise)) {
        for (size_t parity = 0; parity < 2; ++parity) {
            lumaPatterns[parity] = MakePattern(constants.c0 + noiseBias, lumaDither[parity]);
            overlayLumaDithers[parity] = MakePattern(0, overlayLumaDither[parity]);
        }
        overlayLuma = MakePattern(constants.c0 + noiseBias, noDither);
        overlayChroma = MakePairPattern(constants.oU + noiseBias, constants.oV + noiseBias, noDither);
        overlayChromaDithers = MakePattern(0, overlayChromaDither);
        chromaGain = MakePairPattern(constants.gU, constants.gV, noDither);
        chromaPattern = MakePairPattern(constants.oU + chromaRounding, constants.oV + chromaRounding, noDither);
    }

    void Run() {
        WriteLuma();
        WriteSecondPlane();
        WriteThirdPlane();
    }

private:
    const uint8_t* TileRow(int32_t y) const { return useTiles ? inputs.tiles.Row(y) : nullptr; }

    void WriteLuma() {
        for (int32_t y = 0; y < height; ++y) {
            const uint8_t* in = source.luma.Row(y);
            uint8_t* out = target.luma.Row(y);
            const int32_t columns = LumaColumns(out);
            if (const uint8_t* groups = TileRow(y))
                ToneLumaUnderOverlay(y, in, out, columns, groups);
            else if (work)
                kernels.toneLuma(in, out, columns, Curve(), lumaPatterns[y % 2].Data(), LumaNoise(y), noiseColumn);
            else
                std::memcpy(out, in, static_cast<size_t>(columns));
            FillMargin(target.luma, y, 2 * chromaWidth, blackLuma);
        }
    }

    /// An odd width is written as an even one where the row and the buffer have room.
    int32_t LumaColumns(const uint8_t* out) const {
        const int32_t even = 2 * chromaWidth;
        return even <= target.luma.stride && even <= targetEnd - out ? even : width;
    }

    /// The overlay's chroma belongs to both planes, so rows under it are made here for the third plane too.
    void WriteSecondPlane() {
        for (int32_t y = 0; y < height; y += 2) {
            if (const uint8_t* groups = TileRow(y))
                ToneChromaUnderOverlay(y, groups);
            else
                WriteChromaRow(source.second.Row(y / 2), target.second.Row(y / 2));
            FillMargin(target.second, y / 2, chromaWidth, neutralChroma);
        }
    }

    void WriteThirdPlane() {
        for (int32_t y = 0; y < height; y += 2) {
            if (TileRow(y) == nullptr) WriteChromaRow(source.third.Row(y / 2), target.third.Row(y / 2));
            FillMargin(target.third, y / 2, chromaWidth, neutralChroma);
        }
    }

    void WriteChromaRow(const uint8_t* in, uint8_t* out) {
        if (work)
            kernels.toneChroma(in, out, chromaWidth, chromaGain.Data(), chromaPattern.Data());
        else
            std::memmove(out, in, static_cast<size_t>(chromaWidth));  // a host may give one buffer for both
    }

    void ToneLumaUnderOverlay(int32_t y, const uint8_t* in, uint8_t* out, int32_t columns, const uint8_t* groups) {
        const OverlayRow overlay = UnpackTileRow(groups, 2 * chromaWidth, inputs.scratch);
        kernels.toneLumaOverlay(in, out, columns, Curve(), overlayLuma.Data(), LumaNoise(y), noiseColumn, overlay.keep,
                                overlay.lumaTerms, overlayLumaDithers[y % 2].Data());
    }

    void ToneChromaUnderOverlay(int32_t y, const uint8_t* groups) {
        const int32_t samples = 2 * chromaWidth;
        const OverlayRow overlay = UnpackTileRow(groups, samples, inputs.scratch);
        const int16_t* keep = MeanKeep(overlay, samples, inputs.scratch);
        uint8_t* mixed = inputs.scratch.chroma.Prepare(samples);
        uint8_t* toned = inputs.scratch.tonedChroma.Prepare(samples);
        kernels.interleave(source.third.Row(y / 2), source.second.Row(y / 2), mixed, chromaWidth);
        kernels.toneChromaOverlay(mixed, toned, samples, chromaGain.Data(), overlayChroma.Data(), ChromaNoise(y),
                                  noiseColumn, keep, overlay.chromaTerms, overlayChromaDithers.Data());
        uint8_t* second = target.second.Row(y / 2);
        uint8_t* third = target.third.Row(y / 2);
        for (int32_t x = 0; x < chromaWidth; ++x) {
            third[x] = toned[2 * x];
            second[x] = toned[2 * x + 1];
        }
    }

    LumaCurve Curve() const { return {constants.c3, constants.c2, constants.c1}; }
    const int16_t* LumaNoise(int32_t y) const { return inputs.noise.LumaRow(NoiseRowOf(inputs.noise, y)); }
    const int16_t* ChromaNoise(int32_t y) const { return inputs.noise.ChromaRow(NoiseRowOf(inputs.noise, y)); }

    void FillMargin(const Plane& plane, int32_t y, int32_t firstColumn, uint8_t value) const {
        if (plane.stride <= firstColumn) return;
        const int32_t wanted = 4 * std::max((plane.stride - firstColumn + 3) >> 2, 1);
        uint8_t* first = plane.Row(y) + firstColumn;
        const ptrdiff_t room = std::min<ptrdiff_t>(plane.stride - firstColumn, targetEnd - first);
        if (room > 0) std::memset(first, value, static_cast<size_t>(std::min<ptrdiff_t>(wanted, room)));
    }

    const ImagePlanes& target;
    const uint8_t* targetEnd;
    const PictureView& source;
    const OutputStageInputs& inputs;
    const KernelTable& kernels;
    int32_t width;
    int32_t height;
    int32_t chromaWidth;
    bool useTiles;
    OutputConstants constants;
    bool work;
    int32_t noiseColumn;
    ColumnPattern lumaPatterns[2];
    ColumnPattern overlayLumaDithers[2];
    ColumnPattern overlayLuma;
    ColumnPattern overlayChroma;
    ColumnPattern overlayChromaDithers;
    ColumnPattern chromaGain;
    ColumnPattern chromaPattern;
};

}  // namespace

void PlanarOutputStage(const ImagePlanes& target, const uint8_t* targetEnd, const PictureView& source,
                       const OutputStageInputs& inputs) {
    PlanarStage(target, targetEnd, source, inputs).Run();
}

}  // namespace clarivex
