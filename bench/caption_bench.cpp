// What the caption costs: frames while it fades, stands and after its end beside frames that never had one, whole and the
// overlay's share alone.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/frame_stream.h"
#include "overlay/caption_style.h"
#include "pipeline/runnable_sets.h"

namespace clarivex {
namespace {

/// A time in the caption's life.
///
/// before  frames from the start of the stream to it
/// length  frames that it lasts
struct CaptionTime {
    const char* name;
    bool drawn;
    int32_t before;
    int32_t length;
};

constexpr CaptionTime times[] = {
    {"none", false, captionEnd, 1 << 30},
    {"fading", true, 1, 70},
    {"standing", true, 72, 70},
    {"over", true, captionEnd, 1 << 30},
};

constexpr FrameCase frames{formats[0], {640, 480}, true};

std::unique_ptr<FontEngine> FontsFor(const CaptionTime& time) { return time.drawn ? MakeSystemFontEngine() : nullptr; }

/// Runs `play` for the frames of a time only, and `restart` whenever they are used up.
template <class Play, class Restart>
void RunFrames(benchmark::State& state, const CaptionTime& time, Play play, Restart restart) {
    int32_t left = 0;
    for (auto _ : state) {
        if (left-- == 0) {
            state.PauseTiming();
            restart();
            for (int32_t i = 0; i < time.before; ++i) play();
            left = time.length - 1;
            state.ResumeTiming();
        }
        play();
    }
    state.SetItemsProcessed(state.iterations());
}

void WholeFrame(benchmark::State& state, const CaptionTime& time, const KernelTable& kernels) {
    FrameStream stream(frames, kernels, FontsFor(time));
    RunFrames(
        state, time, [&] { benchmark::DoNotOptimize(stream.PlayOne()); }, [&] { stream.StartStream(); });
}

void OverlayAlone(benchmark::State& state, const CaptionTime& time, const KernelTable& kernels) {
    Overlay overlay(FontsFor(time));
    CaptionRun run;
    const FrameSize size = OutputSize(frames.size.width, frames.size.height, frames.scaled);
    RunFrames(
        state, time, [&] { OverlayCompose(overlay, run.Advance(), size.width, size.height, 1.0F, kernels); },
        [&] { run.Restart(); });
}

bool RegisterCaptions() {
    for (const KernelTable* table : AllKernels().subspan(1)) {  // the scalar form would take most of the time
        if (RunnableKernels(table->name) != table) continue;
        for (const CaptionTime& time : times) {
            const std::string name = std::string("/960x720/") + time.name + "/" + table->name;
            benchmark::RegisterBenchmark(("caption/frame" + name).c_str(), WholeFrame, time, *table)
                ->Unit(benchmark::kMicrosecond)
                ->MinTime(0.1);
            benchmark::RegisterBenchmark(("caption/overlay" + name).c_str(), OverlayAlone, time, *table)
                ->Unit(benchmark::kMicrosecond)
                ->MinTime(0.1);
        }
    }
    return true;
}

[[maybe_unused]] const bool captionsRegistered = RegisterCaptions();

}  // namespace
}  // namespace clarivex
