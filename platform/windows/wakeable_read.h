// Reads that a noted signal ends.
#pragma once

namespace clarivex {

/// While one stands, a read that its thread waits in ends with an error as soon as a signal is noted.
class WakeableRead {
public:
    WakeableRead();
    ~WakeableRead();
    WakeableRead(const WakeableRead&) = delete;
    WakeableRead& operator=(const WakeableRead&) = delete;
};

}  // namespace clarivex
