// Whole frames a second through the frame path, for the three formats, enlarged and not, at every width; the memory
// that takes; and that it does not grow with the number of frames.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "engine/enhancement_engine.h"
#include "overlay/overlay_tiles.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/frame_pipeline.h"
#include "pipeline/noise_table.h"
#include "runtime/cpu_features.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

struct NamedFormat {
    const char* name;
    PixelFormat format;
    int32_t bitCount;
};

constexpr std::array<NamedFormat, 3> formats{{
    {"yv12", PixelFormat::yv12, 12},
    {"iyuv", PixelFormat::iyuv, 12},
    {"yuy2", PixelFormat::yuy2, 16},
}};

constexpr std::array<FrameSize, 4> sizes{{{352, 288}, {640, 480}, {720, 576}, {1280, 720}}};

struct FrameCase {
    NamedFormat format;
    FrameSize size;
    bool scaled;
};

/// What a shaded, grained picture with edges in every direction has at a place.
uint8_t TextureAt(int32_t x, int32_t y, int32_t seed) {
    const double rings = std::sin((x - 150.0) * (x - 150.0) / 900.0 + (y - 90.0) * (y - 90.0) / 700.0);
    const uint32_t grain = (static_cast<uint32_t>(x) * 2654435761U + static_cast<uint32_t>(y + seed) * 40503U) >> 27;
    const int32_t block = ((x + seed) / 48 + y / 40) % 2 == 0 ? 30 : -30;
    return static_cast<uint8_t>(120 + 40 * rings + block + static_cast<int32_t>(grain) - 16);
}

size_t PictureBytes(const FrameSize& size, int32_t bitCount) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * static_cast<size_t>(bitCount) / 8;
}

/// A stream of a few pictures that repeat, played through a frame path of its own.
class FrameStream {
public:
    FrameStream(const FrameCase& frames, const KernelTable& kernels) : pipeline(engine, noise, overlay, kernels) {
        engine.Start();
        const FrameSize written = OutputSize(frames.size.width, frames.size.height, frames.scaled);
        request.format = frames.format.format;
        request.input = FormatOf(frames.size, frames.format.bitCount);
        request.source = request.input;
        request.output = FormatOf(written, frames.format.bitCount);
        request.sourceWidth = frames.size.width;
        request.sourceHeight = frames.size.height;
        request.scalingOn = frames.scaled;
        request.newStream = request.settingsDirty = true;
        output.resize(PictureBytes(written, frames.format.bitCount));
        for (size_t i = 0; i < pictures.size(); ++i) {
            pictures[i].resize(PictureBytes(frames.size, frames.format.bitCount));
            const int32_t rowBytes = frames.format.bitCount == 16 ? 2 * frames.size.width : frames.size.width;
            for (size_t at = 0; at < pictures[i].size(); ++at)
                pictures[i][at] = TextureAt(static_cast<int32_t>(at) % rowBytes, static_cast<int32_t>(at) / rowBytes,
                                            static_cast<int32_t>(7 * i));
        }
    }

    /// False when the frame path reports a failure.
    bool PlayOne() {
        const std::vector<uint8_t>& picture = pictures[framesPlayed++ % pictures.size()];
        const FrameResult result =
            pipeline.RunFrame(request, {output.data(), output.size()}, {picture.data(), picture.size()});
        request.newStream = request.settingsDirty = false;
        return result.code == S_OK && result.settingsApplied;
    }

private:
    static ImageFormat FormatOf(const FrameSize& size, int32_t bitCount) {
        ImageFormat format;
        format.readable = true;
        format.width = size.width;
        format.height = size.height;
        format.bitCount = bitCount;
        return format;
    }

    EnhancementEngine engine;
    NoiseTable noise;
    OverlayTiles overlay;
    FramePipeline pipeline;
    FrameRequest request;
    std::array<std::vector<uint8_t>, 4> pictures;
    std::vector<uint8_t> output;
    size_t framesPlayed = 0;
};

double ResidentBytes() {
    std::ifstream figures("/proc/self/statm");
    int64_t total = 0;
    int64_t resident = 0;
    figures >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Most memory that the process has had resident since the last ForgetPeak.
double PeakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return 1024 * static_cast<double>(usage.ru_maxrss);
}

// Where the system does not let a process forget its peak, it stays that of the largest frames so far.
void ForgetPeak() {
    malloc_trim(0);  // what earlier streams have freed is not to count as resident
    std::ofstream("/proc/self/clear_refs") << "5";
}

benchmark::Counter InBytes(double bytes) { return {bytes, benchmark::Counter::kDefaults, benchmark::Counter::kIs1024}; }

void RunFrames(benchmark::State& state, const FrameCase& frames, const KernelTable& kernels) {
    ForgetPeak();
    const double before = ResidentBytes();
    FrameStream stream(frames, kernels);
    for (auto _ : state)
        if (!stream.PlayOne()) {
            state.SkipWithError("the frame path reports a failure");
            return;
        }
    state.SetItemsProcessed(state.iterations());
    state.counters["peakMemory"] = InBytes(PeakBytes());
    state.counters["streamMemory"] = InBytes(PeakBytes() - before);
}

constexpr int32_t manyFrames = 10000;

/// Resident memory after a few frames and after many more.
void MemoryStaysLevel(benchmark::State& state, const FrameCase& frames, const KernelTable& kernels) {
    constexpr int32_t warmUp = 10;
    constexpr double allowedGrowth = 256 * 1024;
    FrameStream stream(frames, kernels);
    bool played = true;
    for (int32_t frame = 0; frame < warmUp; ++frame) played = stream.PlayOne() && played;
    const double before = ResidentBytes();
    for (auto _ : state)
        for (int32_t frame = 0; frame < manyFrames; ++frame) played = stream.PlayOne() && played;
    const double after = ResidentBytes();
    state.SetItemsProcessed(state.iterations() * manyFrames);
    state.counters["memoryBefore"] = InBytes(before);
    state.counters["memoryAfter"] = InBytes(after);
    if (!played)
        state.SkipWithError("the frame path reports a failure");
    else if (after - before > allowedGrowth)
        state.SkipWithError("memory grows with the number of frames");
}

std::string NameOf(const FrameCase& frames) {
    return std::string(frames.format.name) + "/" + std::to_string(frames.size.width) + "x" +
           std::to_string(frames.size.height) + (frames.scaled ? "/scaled" : "/unscaled");
}

bool RegisterFrames() {
    const SimdSupport support = DetectSimdSupport();
    const InstructionSets sets{.sse2 = support.sse2, .avx2 = support.avx2, .avx512 = support.avx512bw};
    for (const FrameSize& size : sizes)
        for (const NamedFormat& format : formats)
            for (const bool scaled : {true, false})
                for (const KernelTable* table : AllKernels())
                    if (CanRun(*table, sets)) {
                        const FrameCase frames{format, size, scaled};
                        const std::string name = "frame/" + NameOf(frames) + "/" + table->name;
                        benchmark::RegisterBenchmark(name.c_str(), RunFrames, frames, *table)
                            ->Unit(benchmark::kMicrosecond)
                            ->MinTime(0.1);
                    }
    for (const NamedFormat& format : formats) {
        const FrameCase frames{format, sizes.front(), true};
        const std::string name = "memoryOver" + std::to_string(manyFrames) + "Frames/" + NameOf(frames);
        benchmark::RegisterBenchmark(name.c_str(), MemoryStaysLevel, frames, SelectKernels(sets))
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1);
    }
    return true;
}

[[maybe_unused]] const bool framesRegistered = RegisterFrames();

}  // namespace
}  // namespace clarivex
