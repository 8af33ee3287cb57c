#include "tests/support/guarded_pages.h"

#include <new>

#include "platform/win32.h"

namespace clarivex {
namespace {

size_t PageBytes() {
    SYSTEM_INFO system = {};
    GetSystemInfo(&system);
    return system.dwPageSize;
}

}  // namespace

std::span<uint8_t> MapGuardedPages(size_t leastBytes) {
    const size_t page = PageBytes();
    const size_t bytes = (leastBytes + page - 1) / page * page;
    void* all = VirtualAlloc(nullptr, bytes + 2 * page, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
    if (all == nullptr) throw std::bad_alloc();
    uint8_t* first = static_cast<uint8_t*>(all) + page;
    DWORD before = 0;
    if (!VirtualProtect(first, bytes, PAGE_READWRITE, &before)) throw std::bad_alloc();
    return {first, bytes};
}

void UnmapGuardedPages(std::span<uint8_t> pages) { VirtualFree(pages.data() - PageBytes(), 0, MEM_RELEASE); }

bool IsReadable(const uint8_t* byte) { return !IsBadReadPtr(byte, 1); }  // tries it

}  // namespace clarivex
