// Frames a second through the C interface, beside the same frames through the frame path in frame_bench: what planes that the
// caller holds cost, and pairs of chroma.
#include <benchmark/benchmark.h>
#include <clarivex/clarivex.h>

#include <string>
#include <vector>

#include "bench/frame_stream.h"
#include "library/planes.h"

namespace clarivex {
namespace {

struct LibraryCase {
    PictureKind kind;
    bool enlarged;
};

/// A picture of one block, its planes without gaps.
struct BlockPicture {
    explicit BlockPicture(const PictureKind& kind) {
        size_t bytes = 0;
        for (int32_t plane = 0; plane < PlaneCount(kind.format); ++plane) {
            const PlaneShape shape = ShapeOf(kind, plane);
            target.stride[plane] = shape.rowBytes;
            offsets[plane] = bytes;
            bytes += static_cast<size_t>(shape.rowBytes) * static_cast<size_t>(shape.rows);
        }
        block.resize(bytes);
        for (size_t at = 0; at < bytes; ++at)
            block[at] =
                TextureAt(static_cast<int32_t>(at) % kind.size.width, static_cast<int32_t>(at) / kind.size.width, 0);
        for (int32_t plane = 0; plane < PlaneCount(kind.format); ++plane) target.plane[plane] = &block[offsets[plane]];
    }
    cvx_source Source() const {
        return {{target.plane[0], target.plane[1], target.plane[2]},
                {target.stride[0], target.stride[1], target.stride[2]}};
    }

    size_t offsets[3] = {};
    std::vector<uint8_t> block;
    cvx_target target{};
};

void RunLibrary(benchmark::State& state, const LibraryCase& frames) {
    cvx_settings settings;
    cvx_context* context = nullptr;
    cvx_settings_init(&settings, sizeof settings);
    settings.mode = frames.enlarged ? CVX_MODE_ALWAYS : CVX_MODE_NEVER;
    settings.padding = CVX_PADDING_KEEP;
    PictureKind kind = frames.kind;
    cvx_create(kind.size.width, kind.size.height, kind.format, &settings, &context);
    const BlockPicture picture(kind);
    cvx_output_size(context, &kind.size.width, &kind.size.height);
    const BlockPicture target(kind);
    const cvx_source source = picture.Source();
    for (auto _ : state)
        if (cvx_process(context, &source, &target.target, CVX_NO_TIME) != CVX_OK) state.SkipWithError("no frame");
    state.SetItemsProcessed(state.iterations());
    cvx_destroy(context);
}

void MakeContexts(benchmark::State& state) {
    for (auto _ : state) {
        cvx_context* context = nullptr;
        cvx_create(1280, 720, CVX_FORMAT_YV12, nullptr, &context);
        cvx_destroy(context);
    }
}
BENCHMARK(MakeContexts)->Name("library/makeContext")->Unit(benchmark::kMicrosecond);

bool RegisterLibrary() {
    constexpr std::array<const char*, 4> names{"i420", "yv12", "nv12", "yuy2"};
    for (const FrameSize& size : {sizes[1], sizes[3], FrameSize{1276, 720}})
        for (int32_t format = CVX_FORMAT_I420; format <= CVX_FORMAT_YUY2; ++format)
            for (const bool enlarged : {true, false}) {
                const std::string name = std::string("library/") + names[static_cast<size_t>(format)] + "/" +
                                         std::to_string(size.width) + "x" + std::to_string(size.height) +
                                         (enlarged ? "/scaled" : "/unscaled");
                benchmark::RegisterBenchmark(name.c_str(), RunLibrary, LibraryCase{{size, format}, enlarged})
                    ->Unit(benchmark::kMicrosecond)
                    ->MinTime(0.1);
            }
    return true;
}

[[maybe_unused]] const bool libraryRegistered = RegisterLibrary();

}  // namespace
}  // namespace clarivex
