// The operations of each width's lanes against plain integers, as checks that are compiled with that width's flags.
#pragma once

#include <cstdint>

#include "simd/kernel_table.h"

namespace clarivex {

/// What the operations work on, as much as the widest lanes take.
struct LaneSamples {
    static constexpr int32_t mostLanes = 32;
    int16_t words[6][mostLanes];
    uint8_t bytes[2][2 * mostLanes];
};

/// Called with the first wrong element of an operation.
using ReportLaneFault = void (*)(const char* operation, int32_t element, int32_t actual, int32_t expected);

struct LaneChecks {
    const KernelTable* kernels;  ///< the table made of the same lanes: whether they can run here
    void (*run)(const LaneSamples& samples, ReportLaneFault report);
};

extern const LaneChecks scalarLaneChecks;
extern const LaneChecks sse2LaneChecks;
extern const LaneChecks avx2LaneChecks;
extern const LaneChecks avx512LaneChecks;
extern const LaneChecks avx512VbmiLaneChecks;

}  // namespace clarivex
