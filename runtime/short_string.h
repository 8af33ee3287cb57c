// A text of 8-bit characters that needs no heap while it is short.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/memory.h"

namespace clarivex {

/// Fewer than 26 bytes with the terminator stand in the object itself, more in a block that waits for memory.
///
/// Texts passed in are zero-terminated and may be the string's own.
class ShortString {
public:
    ShortString() = default;
    explicit ShortString(const char* text) { Assign(text); }
    ShortString(const ShortString& other) : ShortString(other.Text()) {}
    ShortString& operator=(const ShortString& other);

    void Assign(const char* text);
    void Append(const char* text);

    /// Replaces the text by what printf would write.
    [[gnu::format(printf, 2, 3)]] void Format(const char* format, ...);

    /// Valid until the next change.
    const char* Text() const { return isInline ? inlineText : heap.get(); }

    /// Bytes with the terminator.
    int32_t Length() const { return length; }

private:
    static constexpr int32_t inlineBytes = 25;

    char* Data() { return isInline ? inlineText : heap.get(); }
    void Store(const char* text, size_t bytes, size_t keep);

    AlignedArray<char> heap;
    bool isInline = true;
    char inlineText[inlineBytes + 1] = {};
    int32_t capacity = inlineBytes;
    int32_t length = 1;
};

}  // namespace clarivex
