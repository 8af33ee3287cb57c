#include "engine/chroma_scalers.h"

#include <algorithm>
#include <cstring>

namespace clarivex {
namespace {

// Weights of the neighbour in 256ths: 43 puts the outer outputs 1/6 off their sample, 85 a third.
constexpr int16_t centredWeights[3] = {43, 128, 43};
constexpr int16_t shiftedWeights[3] = {85, 85, 0};

constexpr int32_t rowsBetween = 4;  // rows that the columns pass looks at together

/// The last pair lies on the centred grid whatever the grid of the others.
void CentreLastTriple(const uint8_t* row, uint8_t* out, int32_t width, int32_t count, const KernelTable& kernels) {
    const int32_t lastPair = ((width + 1) >> 1) - 1;
    const int32_t rest = count - 3 * lastPair;
    if (rest > 0) kernels.enlargeChromaRow(row + 2 * lastPair, centredWeights, out + 3 * lastPair, rest);
}

/// One row of the pass along the rows.
///
/// padded  see PadChromaRow
void EnlargeRow(const PlaneView& source, int32_t y, bool chromaOdd, uint8_t* padded, uint8_t* out, int32_t count,
                const KernelTable& kernels) {
    const uint8_t* row = PadChromaRow(source, y, padded);
    kernels.enlargeChromaRow(row, chromaOdd ? shiftedWeights : centredWeights, out, count);
    if (chromaOdd) CentreLastTriple(row, out, source.width, count, kernels);
}

/// The pass down the columns, for a source of at least two rows that gives its rows from the upper one on.
///
/// rowOf    finds or makes a row of the source; the last four stay
/// nowhere  a row for what the target has no place for
template <class RowOf>
void EnlargeColumns(const Plane& target, const FrameSize& source, RowOf rowOf, uint8_t* nowhere,
                    const KernelTable& kernels) {
    const auto& [width, height] = source;
    const int32_t pairs = height >> 1;
    const int32_t rowsMade = 3 * pairs + 2 * (height & 1);
    const auto sourceRow = [&](int32_t y) { return rowOf(std::clamp(y, 0, height - 1)); };
    const auto targetRow = [&](int32_t y) { return y < target.height ? target.Row(y) : nowhere; };
    for (int32_t n = 0; n < pairs; ++n) {
        const uint8_t* rows[4] = {sourceRow(2 * n - 1), sourceRow(2 * n), sourceRow(2 * n + 1), sourceRow(2 * n + 2)};
        uint8_t* outs[3] = {targetRow(3 * n), targetRow(3 * n + 1), targetRow(3 * n + 2)};
        kernels.enlargeChromaColumns(rows, outs, width);
    }
    const auto copyRow = [&](int32_t to, int32_t from) {
        std::memcpy(targetRow(to), rowOf(from), static_cast<size_t>(width));
    };
    copyRow(3 * pairs - 1, 2 * pairs - 1);
    for (int32_t y = 3 * pairs; y < rowsMade; ++y) copyRow(y, height - 1);
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
    for (int32_t y = 0; y < source.height; ++y) EnlargeRow(source, y, chromaOdd, padded, target.Row(y), count, kernels);
}

void ScaleChromaColumns(const Plane& target, const PlaneView& source, const uint8_t* sourceEnd,
                        SlackRow<uint8_t>& scratch, const KernelTable& kernels) {
    if (source.height < 2) return;
    const ptrdiff_t readable = sourceEnd - source.Row(source.height - 1);
    const auto width = static_cast<int32_t>(std::min<ptrdiff_t>({(source.width + 3) & ~3, target.stride, readable}));
    EnlargeColumns(
        target, {width, source.height}, [&](int32_t y) { return source.Row(y); }, scratch.Prepare(width), kernels);
}

void ScaleChromaBothAxes(const Plane& target, const PlaneView& source, int32_t columns, bool chromaOdd,
                         SlackRow<uint8_t>& scratch, const KernelTable& kernels) {
    if (source.height < 2) return;
    const int32_t made = 3 * ((source.width + 1) >> 1);
    const int32_t width = std::min((columns + 3) & ~3, target.stride);
    const int32_t stride = (std::max(made, width) + 63) & ~63;
    uint8_t* rows = scratch.Prepare((rowsBetween + 1) * stride + source.width);
    uint8_t* nowhere = rows + rowsBetween * stride;
    uint8_t* padded = nowhere + stride;
    int32_t nextRow = 0;
    const auto rowOf = [&](int32_t y) -> const uint8_t* {
        for (; nextRow <= y; ++nextRow)
            EnlargeRow(source, nextRow, chromaOdd, padded, rows + nextRow % rowsBetween * stride, made, kernels);
        return rows + y % rowsBetween * stride;
    };
    EnlargeColumns(target, {width, source.height}, rowOf, nowhere, kernels);
}

}  // namespace clarivex
