#include "engine/sleeping/chroma_doubling.h"

#include <algorithm>

namespace clarivex {
namespace {

/// Weights of the two neighbours in 32768ths.
struct DoublingWeights {
    int16_t before;
    int16_t behind;
};
constexpr DoublingWeights centredDoubling{8192, 8192};
constexpr DoublingWeights shiftedDoubling{12288, 4096};

const DoublingWeights& DoublingWeightsOf(bool chromaOdd) { return chromaOdd ? shiftedDoubling : centredDoubling; }

}  // namespace

void DoubleChromaRows(const Plane& target, const PlaneView& source, bool chromaOdd, SlackRow<uint8_t>& scratch,
                      const KernelTable& kernels) {
    const DoublingWeights& weights = DoublingWeightsOf(chromaOdd);
    const int32_t count = std::min(source.width, target.stride / 2);
    const int32_t apart = source.width + 8;  // room for what is repeated
    uint8_t* padded = scratch.Prepare(3 * apart);
    uint8_t* even = padded + apart;
    uint8_t* odd = even + apart;
    for (int32_t y = 0; y < source.height; ++y) {
        const uint8_t* row = PadChromaRow(source, y, padded);
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
