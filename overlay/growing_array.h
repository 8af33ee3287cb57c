// The array that the overlay's lists grow in: plain elements, memory that is waited for, one rule for its capacity.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>

#include "runtime/memory.h"

namespace clarivex {

/// New capacity of an array that is to hold `needed` elements, has room for `capacity` and holds `count`: some room to
/// spare when it grows, and no more than that when it shrinks far.
constexpr int64_t VectorCapacityRule(int64_t needed, int64_t capacity, int64_t count) {
    if (needed == 0) return 0;
    if (needed > capacity) return needed > 4 * count ? needed : needed + (needed >> 3) + 32;
    if (needed < capacity && capacity > 256 && needed < capacity / 2) return needed + (needed >> 2);
    return capacity;
}

/// An array of plain elements that can be moved but not copied. Growing waits for memory; a size of 0 releases the
/// storage.
template <class Element>
class GrowingArray {
    static_assert(std::is_trivially_copyable_v<Element>);

public:
    GrowingArray() = default;
    GrowingArray(GrowingArray&& other) noexcept { *this = std::move(other); }
    GrowingArray& operator=(GrowingArray&& other) noexcept {
        storage = std::move(other.storage);
        count = std::exchange(other.count, 0);
        capacity = std::exchange(other.capacity, 0);
        return *this;
    }
    ~GrowingArray() = default;

    int32_t Count() const { return count; }
    bool IsEmpty() const { return count == 0; }

    Element& operator[](int32_t index) { return storage[static_cast<size_t>(index)]; }
    const Element& operator[](int32_t index) const { return storage[static_cast<size_t>(index)]; }
    Element& Last() { return (*this)[count - 1]; }

    Element* begin() { return storage.get(); }
    Element* end() { return storage.get() + count; }
    const Element* begin() const { return storage.get(); }
    const Element* end() const { return storage.get() + count; }
    std::span<const Element> Elements() const { return {storage.get(), static_cast<size_t>(count)}; }

    /// Makes the count `newCount`, at least 0; new elements are not set.
    void Resize(int32_t newCount) {
        const int64_t newCapacity = VectorCapacityRule(newCount, capacity, count);
        if (newCapacity != capacity) {
            // NOLINTNEXTLINE(bugprone-sizeof-expression): elements may well be pointers.
            void* block = ReallocRetry(storage.get(), static_cast<size_t>(newCapacity) * sizeof(Element));
            static_cast<void>(storage.release());  // the old block is gone
            storage.reset(static_cast<Element*>(block));
            capacity = static_cast<int32_t>(newCapacity);
        }
        count = newCount;
    }

    void Append(const Element& element) {
        const Element copy = element;  // it may stand in the block that moves
        Resize(count + 1);
        Last() = copy;
    }

    /// Takes an element out and closes the gap.
    void RemoveAt(int32_t index) {
        std::copy(begin() + index + 1, end(), begin() + index);
        Resize(count - 1);
    }

    void Clear() { Resize(0); }

    bool operator==(const GrowingArray& other) const {
        return count == other.count && std::equal(begin(), end(), other.begin());
    }

private:
    AlignedArray<Element> storage;
    int32_t count = 0;
    int32_t capacity = 0;
};

}  // namespace clarivex
