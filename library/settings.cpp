#include "library/settings.h"

#include <array>

#include "pipeline/cpu_speed.h"
#include "pipeline/frame_geometry.h"
#include "pipeline/runnable_sets.h"

namespace clarivex {
namespace {

constexpr float largestSharpness = 2.0F;
constexpr float largestAspect = 64.0F;
constexpr std::array<const char*, 5> instructionSets{"auto", "scalar", "sse2", "avx2", "avx512"};

/// False for what is no number, too.
bool LiesWithin(float value, float least, float most) { return value >= least && value <= most; }

/// Whether it is one of the constants from 0 on.
bool IsChoice(int32_t value, int32_t last) { return value >= 0 && value <= last; }

bool IsSide(int32_t side) { return side >= CVX_SMALLEST_SIDE && side <= CVX_LARGEST_SIDE; }

cvx_result CheckChoices(const cvx_settings& asked) {
    const bool known = IsChoice(asked.lighting, 1) && IsChoice(asked.noise, 1) && IsChoice(asked.caption, 1) &&
                       IsChoice(asked.mode, CVX_MODE_ALWAYS) && IsChoice(asked.limits, CVX_LIMITS_PLUGIN) &&
                       IsChoice(asked.padding, CVX_PADDING_KEEP) &&
                       IsChoice(asked.instruction_set, CVX_INSTRUCTIONS_AVX512);
    return known ? CVX_OK : CVX_ERROR_SETTING;
}

cvx_result Check(const FrameSize& source, const cvx_settings& asked) {
    if (!IsSide(source.width) || !IsSide(source.height)) return CVX_ERROR_SIZE;
    if (asked.struct_size != sizeof asked) return CVX_ERROR_STRUCT_SIZE;
    if (!LiesWithin(asked.sharpness, 0.0F, largestSharpness)) return CVX_ERROR_SHARPNESS;
    if (!LiesWithin(asked.pixel_aspect, 1 / largestAspect, largestAspect)) return CVX_ERROR_PIXEL_ASPECT;
    return CheckChoices(asked);
}

/// What is too narrow to be enhanced would stand in a corner of the enlarged picture.
bool IsEnlarged(const FrameSize& source, int32_t mode) {
    if (mode == CVX_MODE_NEVER || source.width < smallestWidth) return false;
    return mode == CVX_MODE_ALWAYS || SpeedScore(MeasureCpuSpeed(), int64_t{source.width} * source.height) >= 1.0;
}

}  // namespace

cvx_settings DefaultSettings() {
    return {.struct_size = sizeof(cvx_settings),
            .sharpness = 1.0F,
            .lighting = 1,
            .mode = CVX_MODE_ALWAYS,
            .noise = 1,
            .caption = 0,
            .limits = CVX_LIMITS_LIFTED,
            .padding = CVX_PADDING_CROP,
            .instruction_set = CVX_INSTRUCTIONS_AUTO,
            .pixel_aspect = 1.0F};
}

cvx_result SettleSettings(const FrameSize& source, const cvx_settings* asked, SettledSettings& settled) {
    const cvx_settings wanted = asked != nullptr ? *asked : DefaultSettings();
    if (const cvx_result result = Check(source, wanted); result != CVX_OK) return result;
    const KernelTable* kernels = RunnableKernels(instructionSets[static_cast<size_t>(wanted.instruction_set)]);
    if (kernels == nullptr) return CVX_ERROR_INSTRUCTION_SET;
    settled = {wanted, kernels, IsEnlarged(source, wanted.mode)};
    return CVX_OK;
}

FrameSize TargetSize(const FrameSize& source, const SettledSettings& settings) {
    if (!settings.enlarged) return source;
    FrameSize size = OutputSize(source.width, source.height, true);
    if (settings.asked.padding == CVX_PADDING_CROP) size.width = WidthWithoutPadding(source.width, true);
    return size;
}

}  // namespace clarivex
