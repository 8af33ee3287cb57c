// Pictures for the C interface in memory of any shape, and a context that plays synthetic video.
#pragma once

#include <clarivex/clarivex.h>

#include <memory>
#include <vector>

#include "library/planes.h"
#include "tests/support/guarded_pages.h"
#include "tests/support/synthetic_video.h"

namespace clarivex {

/// How the rows of planes lie in memory that ends where the picture does, between two guards.
struct MemoryShape {
    bool upwards = false;
    int32_t gap = 0;  ///< bytes between rows
    bool atEnd = true;
};

/// A picture in guarded memory, a block for each plane; bytes between the rows are of one value.
class GuardedPicture {
public:
    static constexpr uint8_t filler = 0xA5;

    explicit GuardedPicture(const PictureKind& kind, const MemoryShape& shape = {}) : kind(kind) {
        // The last first: Linux hands out memory downwards, Windows upwards, and no order may matter.
        for (int32_t plane = PlaneCount(kind.format) - 1; plane >= 0; --plane) {
            const PlaneShape size = ShapeOf(kind, plane);
            const int32_t stride = size.rowBytes + shape.gap;
            const auto bytes = static_cast<size_t>(stride * (size.rows - 1) + size.rowBytes);
            blocks[plane] = std::make_unique<GuardedPages>(bytes);
            memory[plane] = shape.atEnd ? blocks[plane]->Last(bytes) : blocks[plane]->First(bytes);
            std::ranges::fill(memory[plane], filler);
            target.plane[plane] = &memory[plane][shape.upwards ? static_cast<size_t>(stride * (size.rows - 1)) : 0];
            target.stride[plane] = shape.upwards ? -stride : stride;
        }
    }

    cvx_source Source() const {
        return {{target.plane[0], target.plane[1], target.plane[2]},
                {target.stride[0], target.stride[1], target.stride[2]}};
    }
    uint8_t* Row(int32_t plane, int32_t y) const { return target.plane[plane] + y * target.stride[plane]; }

    /// act(plane, x, y, byte) for all bytes of the picture, row by row and plane by plane.
    template <class Act>
    void ForEachByte(Act act) const {
        for (int32_t plane = 0; plane < PlaneCount(kind.format); ++plane)
            for (int32_t y = 0; y < ShapeOf(kind, plane).rows; ++y)
                for (int32_t x = 0; x < ShapeOf(kind, plane).rowBytes; ++x) act(plane, x, y, Row(plane, y)[x]);
    }
    std::vector<uint8_t> Samples() const {
        std::vector<uint8_t> samples;
        ForEachByte([&](int32_t, int32_t, int32_t, uint8_t byte) { samples.push_back(byte); });
        return samples;
    }
    void Fill(const std::vector<uint8_t>& samples) {
        size_t next = 0;
        ForEachByte([&](int32_t, int32_t, int32_t, uint8_t& byte) { byte = samples[next++]; });
    }
    /// A synthetic picture; YV12 and NV12 of a frame have the same samples.
    void Draw(int32_t frame) {
        const int32_t v = kind.format == CVX_FORMAT_YV12 ? 2 : 1;
        ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t& byte) {
            const bool paired = kind.format == CVX_FORMAT_NV12 && plane == 1;
            byte = paired ? SyntheticSample(1 + x % 2, x / 2, y, frame)
                          : SyntheticSample(plane == 0   ? 0
                                            : plane == 1 ? v
                                                         : 3 - v,
                                            x, y, frame);
        });
    }
    /// Whether the bytes between the rows are as they were. The picture is lost.
    bool LeavesTheGaps() {
        ForEachByte([](int32_t, int32_t, int32_t, uint8_t& byte) { byte = filler; });
        return std::ranges::all_of(memory, [](std::span<uint8_t> bytes) {
            return std::ranges::all_of(bytes, [](uint8_t byte) { return byte == filler; });
        });
    }

    PictureKind kind;
    cvx_target target{};

private:
    std::unique_ptr<GuardedPages> blocks[3];
    std::span<uint8_t> memory[3];
};

inline cvx_settings Defaults() {
    cvx_settings settings;
    cvx_settings_init(&settings, sizeof settings);
    return settings;
}

struct ContextDeleter {
    void operator()(cvx_context* context) const { cvx_destroy(context); }
};
using OwnedContext = std::unique_ptr<cvx_context, ContextDeleter>;

/// Null where it is refused.
inline OwnedContext MakeContext(const PictureKind& kind, const cvx_settings& settings) {
    cvx_context* context = nullptr;
    cvx_create(kind.size.width, kind.size.height, kind.format, &settings, &context);
    return OwnedContext(context);
}

inline PictureKind TargetOf(const cvx_context& context, int32_t format) {
    PictureKind kind{{}, format};
    cvx_output_size(&context, &kind.size.width, &kind.size.height);
    return kind;
}

/// What a context makes of the next frames; empty where it reports an error.
inline std::vector<uint8_t> Play(cvx_context& context, const PictureKind& kind, int32_t first, int32_t count,
                                 const MemoryShape& shape = {}) {
    GuardedPicture source(kind, shape), target(TargetOf(context, kind.format), shape);
    std::vector<uint8_t> samples;
    for (int32_t frame = first; frame < first + count; ++frame) {
        source.Draw(frame);
        const std::vector<uint8_t> before = source.Samples();
        const cvx_source planes = source.Source();
        if (cvx_process(&context, &planes, &target.target, CVX_NO_TIME) != CVX_OK) return {};
        const std::vector<uint8_t> made = target.Samples();
        if (source.Samples() != before || !source.LeavesTheGaps() || !target.LeavesTheGaps()) return {};
        samples.insert(samples.end(), made.begin(), made.end());
    }
    return samples;
}

}  // namespace clarivex
