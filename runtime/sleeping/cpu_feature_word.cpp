#include "runtime/sleeping/cpu_feature_word.h"

#include <atomic>

#include "runtime/cpu_features.h"

namespace clarivex {
namespace {

std::atomic<uint32_t> processFlags = 0;

}  // namespace

uint32_t DetectCpuFeatures() {
    const uint32_t flags = FeatureFlagsOf(ReadCpuRegisters());
    processFlags.store(flags);
    return flags;
}

uint32_t CpuFeatureFlags() { return processFlags.load(); }

}  // namespace clarivex
