#include "tests/support/short_memory.h"

#include <cstdlib>
#include <new>

namespace clarivex {
namespace {

struct Shortage {
    bool on = false;
    int32_t attempts = 0;
    int32_t first = 0;
    int32_t end = 0;
};
thread_local Shortage shortage;

void* Allocate(size_t size) {
    if (shortage.on) {
        const int32_t attempt = shortage.attempts++;
        if (attempt >= shortage.first && attempt < shortage.end) return nullptr;
    }
    return std::malloc(size != 0 ? size : 1);
}

bool GoOn(size_t, uint32_t) { return true; }
bool GiveUp(size_t, uint32_t) { return false; }

}  // namespace

ShortMemory::ShortMemory(int32_t first, int32_t count, bool waits)
    : previousAllocator(SetRawAllocator(Allocate)), previousWait(SetMemoryWait(waits ? GoOn : GiveUp)) {
    shortage = {true, 0, first, count == forEver ? forEver : first + count};
}

ShortMemory::~ShortMemory() {
    shortage.on = false;
    SetMemoryWait(previousWait);
    SetRawAllocator(previousAllocator);
}

int32_t ShortMemory::Attempts() { return shortage.attempts; }

}  // namespace clarivex

// All forms: a sanitizer's own ones do not go together with these.
void* operator new(std::size_t size) {
    if (void* memory = clarivex::Allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return clarivex::Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return clarivex::Allocate(size); }

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
