// How long this process waits for memory, for programs with the plug-in linked in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace clarivex {

/// Whoever waits for memory gives up after this time; a process that never calls this waits for ever. A media object's
/// call fails with E_OUTOFMEMORY then, and functions of this folder throw a text. Call it before the first of them.
void GiveUpOnMemoryAfter(uint32_t milliseconds);

/// Bytes of the request that gave up last, 0 where its size is not known; nothing while none has.
std::optional<size_t> MemoryGivenUp();

}  // namespace clarivex
