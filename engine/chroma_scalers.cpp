#include "engine/chroma_scalers.h"

#include <algorithm>
#include <cstring>

namespace clarivex {
namespace {

// Weights of the neighbour in 32768ths. 43 of 256 puts the outer outputs 1/6 off their sample, 85 of 256 a third.
constexpr int16_t centredWeights[3] = {43 * 128, 16384, 43 * 128};
constexpr int16_t shiftedWeights[3] = {85 * 128, 85 * 128, 0};

/// The same of the two neighbours for a twofold scale.
struct DoublingWeights {
    int16_t before;
    int16_t behind;
};
constexpr DoublingWeights centredDoubling{8192, 8192};
constexpr DoublingWeights shiftedDoubling{12288, 4096};

const DoublingWeights& DoublingWeightsOf(bool chromaOdd) { return chromaOdd ? shiftedDoubling : centredDoubling; }

/// A copy of the row with its ends repeated as far as the interpolation looks.
const uint8_t* PadRow(const PlaneView& source, int32_t y, uint8_t* row) {
    std::memcpy(row, source.Row(y), static_cast<size_t>(source.width));
    std::memset(row - 2, row[0], 2);
    std::memset(row + source.width, row[source.width - 1], 4);
    return row;
}

/// The last pair lies on the centred grid whatever the grid of the others.
void CentreLastTriple(const uint8_t* row, uint8_t* out, int32_t width, int32_t count, const KernelTable& kernels) {
    const int32_t lastPair = ((width + 1) >> 1) - 1;
    const int32_t rest = count - 3 * lastPair;
    if (rest > 0) kernels.enlargeChromaRow(row + 2 * lastPair, centredWeights, out + 3 * lastPair, rest);
}

}  // namespace

void ScaleChromaRows(const Plane& target, const PlaneView& source, bool chromaOdd, SlackRow<uint8_t>& scratch,
                     const KernelTable& kernels) {
    const int32_t count = std::min(3 * ((source.width + 1) >> 1), target.stride);
    uint8_t* padded = scratch.Prepare(source.width);
    for (int32_t y = 0; y < source.height; ++y) {
        const uint8_t* row = PadRow(source, y, padded);
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

void DoubleChromaRows(const Plane& target, const PlaneView& source, bool chromaOdd, SlackRow<uint8_t>& scratch,
                      const KernelTable& kernels) {
    const DoublingWeights& weights = DoublingWeightsOf(chromaOdd);
    const int32_t count = std::min(source.width, target.stride / 2);
    const int32_t apart = source.width + 8;  // room for what PadRow repeats
    uint8_t* padded = scratch.Prepare(3 * apart);
    uint8_t* even = padded + apart;
    uint8_t* odd = even + apart;
    for (int32_t y = 0; y < source.height; ++y) {
        const uint8_t* row = PadRow(source, y, padded);
        kernels.pullRow(row, row - 1, weights.before, even, count);
        kernels.pullRow(row, row + 1, weights.behind, odd, count);
        kernels.interleave(even, odd, target.Row(y), count);
    }
}

void DoubleChromaColumns(const Plane& target, const PlaneView& source, bool chromaOdd, const KernelTable& kernels) {
    const DoublingWeights& weights = DoublingWeightsOf(chromaOdd);
    const int32_t width = std::min(source.width, target.stride);
    for (int32_t y = 0; y < std::min(2 * source.height, target.height); ++y) {
        const int32_t row = y / 2;
        const int32_t neighbour = y % 2 == 0 ? std::max(row - 1, 0) : std::min(row + 1, source.height - 1);
        kernels.pullRow(source.Row(row), source.Row(neighbour), y % 2 == 0 ? weights.before : weights.behind,
                        target.Row(y), width);
    }
}

}  // namespace clarivex
