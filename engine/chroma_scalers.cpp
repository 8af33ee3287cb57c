#include "engine/chroma_scalers.h"

#include <algorithm>
#include <cstring>

namespace clarivex {
namespace {

// Weights of the neighbour in 32768ths. 43 of 256 puts the outer outputs 1/6 off their sample, 85 of 256 a third.
constexpr int16_t centredWeights[3] = {43 * 128, 16384, 43 * 128};
constexpr int16_t shiftedWeights[3] = {85 * 128, 85 * 128, 0};

/// The last pair lies on the centred grid whatever the grid of the others.
void CentreLastTriple(const uint8_t* row, uint8_t* out, int32_t width, int32_t count, const KernelTable& kernels) {
    const int32_t lastPair = ((width + 1) >> 1) - 1;
    const int32_t rest = count - 3 * lastPair;
    if (rest > 0) kernels.enlargeChromaRow(row + 2 * lastPair, centredWeights, out + 3 * lastPair, rest);
}

}  // namespace

const uint8_t* PadChromaRow(const PlaneView& source, int32_t y, uint8_t* copy) {
    std::memcpy(copy, source.Row(y), static_cast<size_t>(source.width));
    std::memset(copy - 2, copy[0], 2);
    std::memset(copy + source.width, copy[source.width - 1], 4);
    return copy;
}

void ScaleChromaRows(const Plane& target, const PlaneView& source, bool chromaOdd, SlackRow<uint8_t>& scratch,
                     const KernelTable& kernels) {
    const int32_t count = std::min(3 * ((source.width + 1) >> 1), target.stride);
    uint8_t* padded = scratch.Prepare(source.width);
    for (int32_t y = 0; y < source.height; ++y) {
        const uint8_t* row = PadChromaRow(source, y, padded);
        uint8_t* out = target.Row(y);
        kernels.enlargeChromaRow(row, chromaOdd ? shiftedWeights : centredWeights, out, count);
        if (chromaOdd) CentreLastTriple(row, out, source.width, count, kernels);
    }
}

void ScaleChromaColumns(const Plane& target, const PlaneView& source, const uint8_t* sourceEnd,
                        SlackRow<uint8_t>& scratch, const KernelTable& kernels) {
    const int32_t height = source.height;
    if (height < 2) return;
    const ptrdiff_t readable = sourceEnd - source.Row(height - 1);
    const auto width = static_cast<int32_t>(std::min<ptrdiff_t>({(source.width + 3) & ~3, target.stride, readable}));
    const int32_t pairs = height >> 1;
    const int32_t rowsMade = 3 * pairs + 2 * (height & 1);
    uint8_t* nowhere = scratch.Prepare(width);
    const auto sourceRow = [&](int32_t y) { return source.Row(std::clamp(y, 0, height - 1)); };
    const auto targetRow = [&](int32_t y) { return y < target.height ? target.Row(y) : nowhere; };
    for (int32_t n = 0; n < pairs; ++n) {
        const uint8_t* rows[4] = {sourceRow(2 * n - 1), sourceRow(2 * n), sourceRow(2 * n + 1), sourceRow(2 * n + 2)};
        uint8_t* outs[3] = {targetRow(3 * n), targetRow(3 * n + 1), targetRow(3 * n + 2)};
        kernels.enlargeChromaColumns(rows, outs, width);
    }
    const auto copyRow = [&](int32_t to, int32_t from) {
        std::memcpy(targetRow(to), source.Row(from), static_cast<size_t>(width));
    };
    copyRow(3 * pairs - 1, 2 * pairs - 1);
    for (int32_t y = 3 * pairs; y < rowsMade; ++y) copyRow(y, height - 1);
}

}  // namespace clarivex
