// By how much the axes of a picture are enlarged, and up to which sizes.
#pragma once

#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

enum class AxisScale : int32_t { none = 0, threeHalves = 1, twofold = 2 };

/// Samples that an axis of `length` samples is enlarged to.
constexpr int32_t Scaled(int32_t length, AxisScale scale) {
    switch (scale) {
        case AxisScale::threeHalves: return (3 * length) >> 1;
        case AxisScale::twofold: return 2 * length;
        default: return length;
    }
}

/// Scaling of both axes.
struct ScaleModes {
    AxisScale horizontal = AxisScale::none;
    AxisScale vertical = AxisScale::none;

    bool operator==(const ScaleModes&) const = default;
};

/// Pictures as wide or as high as this are too large for what the limit stands for.
struct SizeLimit {
    int32_t width;
    int32_t height;

    constexpr bool Allows(const FrameSize& size) const { return size.width < width && size.height < height; }
};

constexpr SizeLimit twofoldLimit{1024, 768};       ///< twofold on both axes; else nothing is scaled
constexpr SizeLimit twofoldRowsLimit{1362, 1022};  ///< twofold rows, columns by three halves; else three halves on both
constexpr SizeLimit threeHalvesLimit{2048, 1022};  ///< three halves on both axes; else the rows alone
constexpr SizeLimit rowsLimit{2048, 1536};         ///< the rows alone by three halves; else nothing is scaled

/// Pictures of this many samples are not enhanced at all.
constexpr int64_t bypassArea = 1238400;

/// Whether a picture is enlarged by three halves on both axes when that is asked for.
constexpr bool IsEnlargedInFull(const FrameSize& size) {
    return threeHalvesLimit.Allows(size) && int64_t{size.width} * size.height < bypassArea;
}

/// Modes that a scaler has: rows of their own size go with any vertical mode, and of the others only four pairs exist.
/// All others count as no scaling.
ScaleModes KnownModes(ScaleModes wanted);

/// What remains of known modes for a picture of `size`: too large ones are scaled less.
ScaleModes LimitModes(ScaleModes wanted, const FrameSize& size);

}  // namespace clarivex
