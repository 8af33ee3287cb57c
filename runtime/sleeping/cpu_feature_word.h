// The processor's features as one word of the process. Kernels are chosen from SimdSupport instead, so nothing reads it.
#pragma once

#include <cstdint>

namespace clarivex {

/// Reads the processor and stores its flags, as FeatureFlagsOf gives them. May be called again, from any thread.
uint32_t DetectCpuFeatures();

/// The flags of the last DetectCpuFeatures of the process, 0 before the first.
uint32_t CpuFeatureFlags();

}  // namespace clarivex
