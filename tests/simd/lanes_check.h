// Checks of single lane operations against plain integers. The sources of the checks are compiled with the flags of
// their instruction set, so they take nothing from the library and hand plain values back.
#pragma once

#include <cstdint>

namespace clarivex {

/// A lane, or a byte, in which an operation gave something else than expected.
struct LaneFault {
    const char* operation;
    int32_t lane;
    int32_t expected;
    int32_t actual;
};

/// Runs every operation of one set of lanes on extreme and random values.
///
/// faults, room  the first `room` faults are stored.
/// returns the number of faults. May only run where the instruction set can run.
using CheckLanesFunction = int32_t (*)(LaneFault* faults, int32_t room);

int32_t CheckScalarLanes(LaneFault* faults, int32_t room);
int32_t CheckSse2Lanes(LaneFault* faults, int32_t room);
int32_t CheckAvx2Lanes(LaneFault* faults, int32_t room);
int32_t CheckAvx512Lanes(LaneFault* faults, int32_t room);

}  // namespace clarivex
