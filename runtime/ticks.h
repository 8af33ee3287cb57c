// The unit of time that hosts count in.
#pragma once

#include <cstdint>

namespace clarivex {

/// Ticks are 100 nanoseconds.
constexpr int64_t ticksPerSecond = 10'000'000;

}  // namespace clarivex
