// Every kernel at every width that this processor runs, on rows that stay in the first-level cache. Counts output
// samples a second.
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <string>

#include "algorithms/slack_row.h"
#include "pipeline/runnable_sets.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

constexpr int32_t longestRow = 1920;
constexpr int32_t pictureStride = longestRow + 64;  // an odd number of cache lines, as the rows between the passes have

/// Rows with the content and the room that the kernels ask for.
class BenchRows {
public:
    BenchRows() {
        std::mt19937 random(1);
        for (auto& row : byteRows)
            for (uint8_t *sample = row.Prepare(2 * longestRow), *end = sample + 2 * longestRow; sample < end; ++sample)
                *sample = static_cast<uint8_t>(random());
        for (auto& row : wordRows)
            for (int16_t *word = row.Prepare(longestRow), *end = word + longestRow; word < end; ++word)
                *word = static_cast<int16_t>(257 * static_cast<int32_t>(random() % 256) - 32768);
        int16_t* keep = keepRow.Prepare(longestRow);
        for (int32_t x = 0; x < longestRow; ++x) keep[x] = static_cast<int16_t>(random() % 32768);
        for (int16_t& word : noise) word = static_cast<int16_t>(random() % 64);
    }

    uint8_t* Bytes(size_t i) { return byteRows[i].Prepare(2 * longestRow); }
    uint8_t* Picture(size_t i, int32_t y) { return pictures[i].Prepare(64 * pictureStride) + y * pictureStride; }
    uint8_t* Work() { return work.Prepare(rowWorkBytes); }
    int16_t* Words(size_t i) { return wordRows[i].Prepare(longestRow); }
    LumaTone Luma() const { return {{.c3 = 900, .c2 = -400, .c1 = 8100}, pattern.data(), curveTable.data()}; }
    ChromaTone Chroma() const { return {pattern.data(), pattern.data()}; }
    GrainRow Grain() const { return {noise.data(), 40}; }
    OverlayRow Overlay() { return {keepRow.Prepare(longestRow), Bytes(2), pattern.data()}; }

    std::array<int16_t, 24> taps{-120, 480,   -1800, 9600, 9600, -1800, 480,   -120, -120, 480,   -1800, 9600,
                                 9600, -1800, 480,   -120, -120, 480,   -1800, 9600, 9600, -1800, 480,   -120};

private:
    alignas(64) std::array<int16_t, patternLength> pattern{};
    alignas(64) std::array<int16_t, noisePeriod + noiseRepeated> noise{};
    alignas(64) std::array<uint8_t, lumaTableBytes> curveTable{};
    std::array<SlackRow<uint8_t>, 8> byteRows;
    std::array<SlackRow<uint8_t>, 2> pictures;
    SlackRow<uint8_t> work;
    std::array<SlackRow<int16_t>, 8> wordRows;
    SlackRow<int16_t> keepRow;
};

/// One call of a kernel that writes `width` samples, or that many in each of `rowsWritten` rows.
struct KernelBench {
    const char* name;
    int32_t rowsWritten;
    void (*call)(const KernelTable& table, BenchRows& rows, int32_t width);
};

void CallEnlargeColumns(const KernelTable& table, BenchRows& rows, int32_t width) {
    std::array<const int16_t*, 8> in{};
    for (size_t k = 0; k < 8; ++k) in[k] = rows.Words(k);
    table.enlargeColumns(in.data(), rows.taps.data(), rows.Bytes(0), width);
}

/// A band that is a whole number of groups at every width of lanes; with limiter and filter or alone.
constexpr int32_t bandRows = 64;

void CallEnlargeRows(const KernelTable& table, BenchRows& rows, int32_t width, bool filtered) {
    std::array<const uint8_t*, bandRows> in{};
    std::array<uint8_t*, bandRows> out{};
    for (int32_t y = 0; y < bandRows; ++y) {
        in[static_cast<size_t>(y)] = rows.Picture(0, y);
        out[static_cast<size_t>(y)] = rows.Picture(1, y);
    }
    const EdgeLimits limits;
    const RowFilters filters{
        rows.taps.data(), filtered ? &limits : nullptr, filtered ? rows.taps.data() : nullptr, {width, 4, width - 4}};
    table.enlargeRows({in.data(), out.data(), bandRows, width / 12 * 8, width / 12 * 12, width / 12 * 12}, filters,
                      rows.Work());
}

template <size_t count>
std::array<const int16_t*, count> WideRows(BenchRows& rows) {
    std::array<const int16_t*, count> in{};
    for (size_t k = 0; k < count; ++k) in[k] = rows.Words(k % 7);
    return in;
}

void CallEnlargeChromaColumns(const KernelTable& table, BenchRows& rows, int32_t width) {
    const std::array<const uint8_t*, 4> in{rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), rows.Bytes(3)};
    const std::array<uint8_t*, 3> outs{rows.Bytes(4), rows.Bytes(5), rows.Bytes(6)};
    table.enlargeChromaColumns(in.data(), outs.data(), width);
}

void CallEnlargeChromaRow(const KernelTable& table, BenchRows& rows, int32_t width) {
    constexpr std::array<int16_t, 3> weights{43, 128, 43};
    table.enlargeChromaRow(rows.Bytes(0), weights.data(), rows.Bytes(1), width);
}

void CallBlendChromaRows(const KernelTable& table, BenchRows& rows, int32_t width) {
    const std::array<const uint8_t*, 4> in{rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), rows.Bytes(3)};
    table.blendChromaRows(in.data(), rows.Bytes(4), width / 2);
}

const KernelBench kernelBenches[] = {
    {"enlargeRows", bandRows,
     [](const KernelTable& table, BenchRows& rows, int32_t width) { CallEnlargeRows(table, rows, width, true); }},
    {"enlargeRowsAlone", bandRows,
     [](const KernelTable& table, BenchRows& rows, int32_t width) { CallEnlargeRows(table, rows, width, false); }},
    {"limitEdges", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.limitEdges(rows.Bytes(0), rows.Bytes(1), width, EdgeLimits{});
     }},
    {"limitEdgesOddZone", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         EdgeLimits limits;
         limits.deadZone = 30;
         table.limitEdges(rows.Bytes(0), rows.Bytes(1), width, limits);
     }},
    {"fir5", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.fir5(rows.Bytes(0), rows.Bytes(1), {width, 4, width - 4}, rows.taps.data(), rows.Words(0));
     }},
    {"fir7", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.fir7(rows.Bytes(0), rows.Bytes(1), {width, 4, width - 4}, rows.taps.data(), rows.Words(0));
     }},
    {"fir8", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.fir8(rows.Bytes(0), rows.Bytes(1), {width, 4, width - 4}, rows.taps.data(), rows.Words(0));
     }},
    {"firEven", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.firEven(rows.Bytes(0), rows.Bytes(1), {width, 8, width - 8}, rows.taps.data(), 7);
     }},
    {"expandRow", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.expandRow(rows.Bytes(0), rows.Words(0), width);
     }},
    {"enlargeColumns", 1, CallEnlargeColumns},
    {"doubleRow", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.doubleRow(rows.Bytes(0), rows.taps.data(), rows.Bytes(1), width / 2);
     }},
    {"doubleRowWide", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.doubleRowWide(rows.Bytes(0), rows.taps.data(), rows.Words(0), width / 2);
     }},
    {"doubleColumnsWide", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.doubleColumnsWide(WideRows<8>(rows).data(), rows.taps.data(), rows.Words(7), width);
     }},
    {"limitEdgesWide", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.limitEdgesWide(WideRows<5>(rows).data(), rows.Words(7), width, EdgeLimits{});
     }},
    {"firWide", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.firWide(WideRows<16>(rows).data(), rows.taps.data(), rows.Words(7), width);
     }},
    {"narrowRow", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.narrowRow(rows.Words(0), rows.Bytes(0), width);
     }},
    {"enlargeChromaRow", 1, CallEnlargeChromaRow},
    {"enlargeChromaColumns", 3, CallEnlargeChromaColumns},
    {"pullRow", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.pullRow(rows.Bytes(0), rows.Bytes(1), 12288, rows.Bytes(2), width);
     }},
    {"sharpenColumns", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.sharpenColumns(rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), rows.Bytes(3), width, 9);
     }},
    {"lightingVotes", 2,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.lightingVotes(rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), width / 2,
                             {rows.Bytes(3), rows.Bytes(4), rows.Bytes(5), rows.Bytes(6)});
     }},
    {"splitPackedRow", 2,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.splitPackedRow(rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), rows.Bytes(3), width / 2);
     }},
    {"toneLuma", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.toneLuma(rows.Bytes(0), rows.Bytes(1), width, rows.Luma(), rows.Grain());
     }},
    {"toneLumaOverlay", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.toneLumaOverlay(rows.Bytes(0), rows.Bytes(1), width, rows.Luma(), rows.Grain(), rows.Overlay());
     }},
    {"toneChroma", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.toneChroma(rows.Bytes(0), rows.Bytes(1), width, rows.Chroma());
     }},
    {"toneChromaNoise", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.toneChromaNoise(rows.Bytes(0), rows.Bytes(1), width, rows.Chroma(), rows.Grain());
     }},
    {"toneChromaOverlay", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.toneChromaOverlay(rows.Bytes(0), rows.Bytes(1), width, rows.Chroma(), rows.Grain(), rows.Overlay());
     }},
    {"blendChromaRows", 1, CallBlendChromaRows},
    {"tonePackedRow", 2,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         const std::array<const uint8_t*, 4> chroma{rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), rows.Bytes(3)};
         table.tonePackedRow(rows.Bytes(4), chroma.data(), rows.Bytes(5), width,
                             {rows.Luma(), rows.Chroma(), rows.Grain(), rows.Grain()});
     }},
    {"interleave", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.interleave(rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), width / 2);
     }},
    {"deinterleave", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.deinterleave(rows.Bytes(0), rows.Bytes(1), rows.Bytes(2), width / 2);
     }},
    {"paintCoverage", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         constexpr std::array<int16_t, 4> yellow{-16320, 12352, -7168, 832};
         table.paintCoverage(rows.Bytes(0), yellow.data(), rows.Bytes(1), width / 4);
     }},
    {"packTileRow", 1,
     [](const KernelTable& table, BenchRows& rows, int32_t width) {
         table.packTileRow(rows.Bytes(0), rows.Bytes(1), width / 24, false);
     }},
};

void RunKernel(benchmark::State& state, const KernelBench& bench, const KernelTable& table, int32_t width) {
    BenchRows rows;
    for (auto _ : state) {
        bench.call(table, rows, width);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * bench.rowsWritten);
}

bool RegisterKernels() {
    for (const KernelBench& bench : kernelBenches)
        for (const int32_t width : {960, longestRow})
            for (const KernelTable* table : AllKernels())
                if (RunnableKernels(table->name) == table) {
                    const std::string name =
                        std::string("kernel/") + bench.name + "/" + std::to_string(width) + "/" + table->name;
                    benchmark::RegisterBenchmark(name.c_str(), RunKernel, bench, *table, width)->MinTime(0.02);
                }
    return true;
}

[[maybe_unused]] const bool kernelsRegistered = RegisterKernels();

}  // namespace
}  // namespace clarivex
