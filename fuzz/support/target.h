// A fuzzer's input as numbers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace clarivex {

/// Hands out the input from its start on; zeros behind its end.
class InputNumbers {
public:
    InputNumbers(const uint8_t* data, size_t size) : left(data, size) {}

    bool AreLeft() const { return !left.empty(); }

    /// The input that was not handed out.
    std::span<const uint8_t> Rest() const { return left; }

    /// A number below `bound`, which is at least 1: of one byte where that is enough, else of four, high byte first.
    uint32_t Below(uint32_t bound) {
        uint32_t number = 0;
        for (int i = 0, bytes = bound <= 0x100 ? 1 : 4; i < bytes && AreLeft(); ++i, left = left.subspan(1))
            number = number << 8 | left.front();
        return number % bound;
    }

    /// Any bits, as they stand in memory.
    template <class Number>
    Number Any() {
        uint8_t bytes[sizeof(Number)] = {};
        const size_t taken = std::min(left.size(), sizeof bytes);
        std::copy_n(left.begin(), taken, bytes);
        left = left.subspan(taken);
        Number number;
        std::memcpy(&number, bytes, sizeof number);
        return number;
    }

private:
    std::span<const uint8_t> left;
};

}  // namespace clarivex
