// Resampling filters: a continuous kernel designed in floating point, sampled into the tap sets of the pixel loops.
#pragma once

#include <array>
#include <cstdint>

namespace clarivex {

/// One side of an even interpolation kernel: entry i is its value i/64 input samples from the centre.
using PrototypeKernel = std::array<float, 256>;

/// Tap k weighs the input sample at position k - 4 relative to the phase's reference sample.
using TapSet = std::array<int16_t, 8>;

/// Phases of a 3/2 enlargement: output sample 3n + j lies at input position 2n + j + p, p = -1/6, -1/2, -5/6. Each sums
/// to 16320.
struct ThreeHalvesTaps {
    TapSet a{};
    TapSet b{};
    TapSet c{};
};

/// Phases of a twofold enlargement: output sample 2n lies at input position n - 1/4, output 2n + 1 at n + 1/4. Each sums
/// to 16384. The second phase is the first one mirrored; its tap k stands at position k - 3.
struct TwofoldTaps {
    TapSet a{};
    TapSet b{};
};

enum class WindowKind { kaiser = 0, sinc = 1, none = 2 };

/// Shape of a prototype kernel.
struct PrototypeDesign {
    double halfWidth = 3.75;   ///< distance at which the window ends, in input samples
    double beta = 9.8;         ///< shape parameter of the Kaiser window
    double cutoff = 0.75;      ///< low-pass cut-off as a fraction of Nyquist
    double timeScale = 1.0;    ///< stretch of the kernel
    double gain = 1.0;         ///< final factor
    double combWeightA = 0.0;  ///< weights of the two sharpening comb pairs
    double combWeightB = 0.0;
    double combOffsetA = 64.0;  ///< distances of the comb pairs from the centre, in 64ths of a sample
    double combOffsetB = 128.0;
    WindowKind window = WindowKind::kaiser;
};

/// Fills the whole table.
void DesignPrototype(PrototypeKernel& table, const PrototypeDesign& design);

/// Keeps the first `count` entries (0 … 256) and clears the rest.
void TruncateSpectrum(PrototypeKernel& table, int32_t count);

/// Divides the table so that the kernel's integral over both sides is 1.
void NormalisePrototype(PrototypeKernel& table);

/// Samples the kernel into three phases whose sum and first moment are exact after quantisation.
ThreeHalvesTaps DesignThreeHalvesTaps(const PrototypeKernel& table);

/// Samples the kernel into the phases of a twofold enlargement. Their sum is exact; the first moment may be off by a few
/// units. Traces the taps as sampled and the moments on the way.
TwofoldTaps DesignTwofoldTaps(const PrototypeKernel& table);

}  // namespace clarivex
