// What fuzz targets have in common: their input as numbers, and a way to say that something is wrong.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

namespace clarivex {

/// Ends the program with a complaint; an empty one is none.
inline void Demand(const std::string& complaint) {
    if (complaint.empty()) return;
    std::fprintf(stderr, "%s\n", complaint.c_str());
    std::abort();
}
inline void Demand(bool good, const char* complaint) { Demand(good ? "" : complaint); }

/// Hands out the input from its start on; zeros behind its end.
class InputNumbers {
public:
    InputNumbers(const uint8_t* data, size_t size) : left(data, size) {}

    /// The input that was not handed out.
    std::span<const uint8_t> Rest() const { return left; }

    /// A number below `bound`, which is at least 1: of one byte where that is enough, else of four, high byte first.
    uint32_t Below(uint32_t bound) {
        uint32_t number = 0;
        for (int i = 0, bytes = bound <= 0x100 ? 1 : 4; i < bytes && !left.empty(); ++i, left = left.subspan(1))
            number = number << 8 | left.front();
        return number % bound;
    }

    /// Any bits, as they stand in memory.
    template <class Number>
    Number Any() {
        Number number{};
        const size_t taken = std::min(left.size(), sizeof number);
        std::copy_n(left.begin(), taken, reinterpret_cast<uint8_t*>(&number));
        left = left.subspan(taken);
        return number;
    }

private:
    std::span<const uint8_t> left;
};

}  // namespace clarivex
