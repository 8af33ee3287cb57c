#include "pipeline/row_toner.h"

#include "pipeline/output_constants.h"

namespace clarivex {
namespace {

/// Takes away the 128 that noise words have more than their noise, four times as they have it.
constexpr int32_t noiseBias = -4 * 128;

constexpr Columns4 noDither{};
constexpr Columns4 overlayLumaDither[2] = {{2, 6, 2, 6}, {6, 2, 6, 2}};

}  // namespace

RowToner::RowToner(const OutputStageInputs& inputs, const StageDithers& dithers)
    : kernels(inputs.kernels), noise(inputs.noise), noisyChroma(dithers.noisyChroma) {
    const OutputConstants constants = MakeOutputConstants(inputs.params);
    const int32_t luma = constants.c0 + noiseBias;
    const int32_t chromaBias = noisyChroma ? noiseBias : 0;
    curve = {constants.c3, constants.c2, constants.c1};
    if (kernels.tabulateLuma != nullptr) kernels.tabulateLuma(curve, curveTable.data());
    chromaGains = MakePattern(constants.gU, constants.gV, noDither);
    for (size_t parity = 0; parity < 2; ++parity)
        patterns[parity] = {MakePattern(luma, luma, dithers.luma[parity]),
                            MakePattern(constants.oU + chromaBias, constants.oV + chromaBias, dithers.chroma[parity]),
                            MakePattern(0, 0, overlayLumaDither[parity]),
                            MakePattern(0, 0, dithers.overlayChroma[parity])};
    noisyLumaOffset = MakePattern(luma, luma, noDither);
    noisyChromaOffset = MakePattern(constants.oU + noiseBias, constants.oV + noiseBias, noDither);
}

void RowToner::Luma(int32_t y, const uint8_t* in, uint8_t* out, int32_t columns) const {
    kernels.toneLuma(in, out, columns, {curve, PatternsOf(y).luma.Data(), curveTable.data()}, noise.LumaGrain(y));
}

void RowToner::Chroma(int32_t y, const uint8_t* in, uint8_t* out, int32_t samples) const {
    const ChromaTone tone{chromaGains.Data(), PatternsOf(y).chroma.Data()};
    if (noisyChroma)
        kernels.toneChromaNoise(in, out, samples, tone, noise.ChromaGrain(y));
    else
        kernels.toneChroma(in, out, samples, tone);
}

void RowToner::Packed(int32_t y, const uint8_t* luma, const uint8_t* const* chroma, uint8_t* out,
                      int32_t columns) const {
    const RowPatterns& row = PatternsOf(y);
    kernels.tonePackedRow(
        luma, chroma, out, columns,
        {{curve, row.luma.Data()}, {chromaGains.Data(), row.chroma.Data()}, noise.LumaGrain(y), noise.ChromaGrain(y)});
}

void RowToner::LumaUnder(const OverlayTerms& overlay, int32_t y, const uint8_t* in, uint8_t* out,
                         int32_t columns) const {
    kernels.toneLumaOverlay(in, out, columns, {curve, noisyLumaOffset.Data()}, noise.LumaGrain(y),
                            {overlay.keep, overlay.luma, PatternsOf(y).overlayLuma.Data()});
}

void RowToner::ChromaUnder(const OverlayTerms& overlay, int32_t y, const uint8_t* in, uint8_t* out,
                           int32_t samples) const {
    kernels.toneChromaOverlay(in, out, samples, {chromaGains.Data(), noisyChromaOffset.Data()}, noise.ChromaGrain(y),
                              {overlay.keep, overlay.chroma, PatternsOf(y).overlayChroma.Data()});
}

}  // namespace clarivex
