#include "tests/support/guarded_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>

namespace clarivex {
namespace {

size_t PageBytes() { return static_cast<size_t>(sysconf(_SC_PAGESIZE)); }

}  // namespace

std::span<uint8_t> MapGuardedPages(size_t leastBytes) {
    const size_t page = PageBytes();
    const size_t bytes = (leastBytes + page - 1) / page * page;
    void* all = mmap(nullptr, bytes + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED) throw std::bad_alloc();
    uint8_t* first = static_cast<uint8_t*>(all) + page;
    if (mprotect(first, bytes, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    return {first, bytes};
}

void UnmapGuardedPages(std::span<uint8_t> pages) {
    const size_t page = PageBytes();
    munmap(pages.data() - page, pages.size() + 2 * page);
}

bool IsReadable(const uint8_t* byte) {
    int ends[2];
    if (pipe(ends) != 0) return false;
    const bool wasRead = write(ends[1], byte, 1) == 1;  // else EFAULT
    close(ends[0]);
    close(ends[1]);
    return wasRead;
}

}  // namespace clarivex
