#include "runtime/short_string.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <utility>

namespace clarivex {

ShortString& ShortString::operator=(const ShortString& other) {
    if (this != &other) Assign(other.Text());
    return *this;
}

void ShortString::Assign(const char* text) { Store(text, std::strlen(text), 0); }

void ShortString::Append(const char* text) { Store(text, std::strlen(text), static_cast<size_t>(length) - 1); }

void ShortString::Format(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list measured;
    va_copy(measured, arguments);
    const int characters = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    // Written beside the present text, which may be among the arguments.
    const size_t bytes = static_cast<size_t>(std::max(characters, 0)) + 1;
    const auto formatted = MakeAlignedArray<char>(bytes);
    formatted[0] = '\0';
    std::vsnprintf(formatted.get(), bytes, format, arguments);
    va_end(arguments);
    Assign(formatted.get());
}

/// Puts `bytes` characters of `text` behind the first `keep` of the present ones.
void ShortString::Store(const char* text, size_t bytes, size_t keep) {
    if (bytes > static_cast<size_t>(std::numeric_limits<int32_t>::max()) - keep - 1)
        throw "QMemAlloc : realloc() failed";
    const auto needed = static_cast<int32_t>(keep + bytes + 1);
    AlignedArray<char> outgrown;  // lives to the end: `text` may point into it
    if (needed > capacity) {
        auto grown = MakeAlignedArray<char>(static_cast<size_t>(needed));
        std::memcpy(grown.get(), Data(), keep);
        outgrown = std::exchange(heap, std::move(grown));
        isInline = false;
        capacity = needed;
    }
    std::memmove(Data() + keep, text, bytes);
    Data()[keep + bytes] = '\0';
    length = needed;
}

}  // namespace clarivex
