// Whole frames a second through the frame path, for the three formats, enlarged and not, at every width; the memory
// that takes; and that it does not grow with the number of frames. Then frames through the engine alone in the modes that
// the frame path does not set, and what looking at a frame's lighting takes.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string>

#include "algorithms/lighting.h"
#include "bench/frame_stream.h"
#include "engine/enhancement_pass.h"
#include "pipeline/runnable_sets.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

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

/// Where the system does not let a process forget its peak, it stays that of the largest frames so far.
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

/// Scaling of rows and columns, and whether the columns come first.
struct PassModes {
    const char* name;
    AxisScale vertical;
    bool verticalFirst;
};

constexpr std::array<PassModes, 3> doublingModes{{
    {"2x2", AxisScale::twofold, false},
    {"2x1.5", AxisScale::threeHalves, false},
    {"2x1.5/columnsFirst", AxisScale::threeHalves, true},
}};

WorkingImage TexturedImage(const FrameSize& size) {
    WorkingImage image;
    image.Resize(size.width, size.height);
    for (const Plane& plane : {image.Planes().luma, image.Planes().second, image.Planes().third})
        for (int32_t y = 0; y < plane.height; ++y)
            for (int32_t x = 0; x < plane.width; ++x) plane.Row(y)[x] = TextureAt(x, y, 0);
    return image;
}

/// One picture through the engine again and again, at the strength of a usual setting.
void RunPasses(benchmark::State& state, const FrameSize& size, const PassModes& modes, const KernelTable& kernels) {
    EngineSettings settings;
    settings.frame.horizontalMode = AxisScale::twofold;
    settings.frame.verticalMode = modes.vertical;
    settings.order.verticalFirst = modes.verticalFirst;
    settings.frame.sharpness = 0.8F;
    const WorkingImage picture = TexturedImage(size);
    EngineState engine;
    WorkingImage enhanced;
    for (auto _ : state) {
        const PassPlan plan = MakePassPlan(settings, size, {});
        enhanced.Resize(plan.target.width, plan.target.height);
        if (!RunPass(plan, SourceOf(picture), enhanced.Planes(), engine, kernels).planesWritten) {
            state.SkipWithError("the engine writes nothing");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations());
}

void RunLighting(benchmark::State& state, const KernelTable& kernels) {
    constexpr int64_t oneFrame = 400000;
    const WorkingImage picture = TexturedImage({640, 480});
    LightingState tracked;
    for (auto _ : state)
        benchmark::DoNotOptimize(AnalyseLighting(SourceOf(picture).planes, oneFrame, tracked, kernels));
    state.SetItemsProcessed(state.iterations());
}

std::string NameOf(const FrameCase& frames) {
    return std::string(frames.format.name) + "/" + std::to_string(frames.size.width) + "x" +
           std::to_string(frames.size.height) + (frames.scaled ? "/scaled" : "/unscaled");
}

bool RegisterFrames() {
    for (const FrameSize& size : sizes)
        for (const NamedFormat& format : formats)
            for (const bool scaled : {true, false})
                for (const KernelTable* table : AllKernels())
                    if (RunnableKernels(table->name) == table) {
                        const FrameCase frames{format, size, scaled};
                        const std::string name = "frame/" + NameOf(frames) + "/" + table->name;
                        benchmark::RegisterBenchmark(name.c_str(), RunFrames, frames, *table)
                            ->Unit(benchmark::kMicrosecond)
                            ->MinTime(0.1);
                    }
    for (const NamedFormat& format : formats) {
        const FrameCase frames{format, sizes.front(), true};
        const std::string name = "memoryOver" + std::to_string(manyFrames) + "Frames/" + NameOf(frames);
        benchmark::RegisterBenchmark(name.c_str(), MemoryStaysLevel, frames, SelectKernels(RunnableSets()))
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1);
    }
    return true;
}

bool RegisterPasses() {
    for (size_t size = 0; size < 2; ++size)
        for (const PassModes& modes : doublingModes)
            for (const KernelTable* table : AllKernels())
                if (RunnableKernels(table->name) == table) {
                    const std::string name = "pass/" + std::to_string(sizes[size].width) + "x" +
                                             std::to_string(sizes[size].height) + "/" + modes.name + "/" + table->name;
                    benchmark::RegisterBenchmark(name.c_str(), RunPasses, sizes[size], modes, *table)
                        ->Unit(benchmark::kMicrosecond)
                        ->MinTime(0.1);
                }
    return true;
}

bool RegisterLighting() {
    for (const KernelTable* table : AllKernels())
        if (RunnableKernels(table->name) == table)
            benchmark::RegisterBenchmark((std::string("lighting/640x480/") + table->name).c_str(), RunLighting, *table)
                ->Unit(benchmark::kMicrosecond)
                ->MinTime(0.05);
    return true;
}

[[maybe_unused]] const bool framesRegistered = RegisterFrames();
[[maybe_unused]] const bool passesRegistered = RegisterPasses();
[[maybe_unused]] const bool lightingRegistered = RegisterLighting();

}  // namespace
}  // namespace clarivex
