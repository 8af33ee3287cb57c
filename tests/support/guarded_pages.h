// Memory between two pages that nobody may touch: the first byte read or written too far ends the test at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace clarivex {

/// Takes whole pages, at least `leastBytes` long, with an untouchable page right before and right behind them. They are
/// zero. Throws std::bad_alloc.
std::span<uint8_t> MapGuardedPages(size_t leastBytes);

/// Gives back what MapGuardedPages gave, and the guards.
void UnmapGuardedPages(std::span<uint8_t> pages);

/// Whether this process may read the byte.
bool IsReadable(const uint8_t* byte);

/// Room for buffers that begin right behind one guard or end right before the other.
class GuardedPages {
public:
    explicit GuardedPages(size_t leastBytes) : pages(MapGuardedPages(leastBytes)) {}
    ~GuardedPages() { UnmapGuardedPages(pages); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    std::span<uint8_t> First(size_t bytes) const { return pages.first(bytes); }
    std::span<uint8_t> Last(size_t bytes) const { return pages.last(bytes); }

private:
    std::span<uint8_t> pages;
};

}  // namespace clarivex
