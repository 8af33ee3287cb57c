// Rows of samples for tests of kernels: heap memory that ends where reading must end, guards that show every stray
// write, and a comparison of two kernels that are called with the same rows.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace clarivex {

/// What breaks arithmetic, then anything.
enum class Fill { zeros, full, alternating, nearEnds, random };

constexpr std::array<Fill, 5> allFills{Fill::zeros, Fill::full, Fill::alternating, Fill::nearEnds, Fill::random};

/// A number from 0 … limit.
inline int32_t UpTo(std::mt19937& random, int32_t limit) {
    return static_cast<int32_t>(random() % (static_cast<uint32_t>(limit) + 1));
}

/// Fills samples with values of low … high.
template <class T>
void FillSamples(T* samples, int32_t count, Fill fill, int32_t low, int32_t high, std::mt19937& random) {
    const auto value = [&](int32_t i) {
        switch (fill) {
            case Fill::zeros: return low;
            case Fill::full: return high;
            case Fill::alternating: return i % 2 == 0 ? low : high;
            case Fill::nearEnds: {
                const auto bits = random();
                const int32_t step = std::min(static_cast<int32_t>(bits >> 1 & 1), high - low);
                return (bits & 1) == 0 ? low + step : high - step;
            }
            default: return low + UpTo(random, high - low);
        }
    };
    for (int32_t i = 0; i < count; ++i) samples[i] = static_cast<T>(value(i));
}

/// Samples beside a row.
struct Room {
    int32_t before = 0;
    int32_t behind = 0;
};

/// A row to write to, with room beside it that may be written as well and guards around both.
template <class T>
class GuardedRow {
public:
    GuardedRow(int32_t samples, Room beside, int32_t offset, uint8_t filler)
        : count(samples),
          room(beside),
          start(guardLength + offset + room.before),
          memory(static_cast<size_t>(start + count + room.behind + guardLength), static_cast<T>(filler * 257)) {
        for (int32_t i = -start; i < End(); ++i)
            if (IsGuard(i)) Samples()[i] = GuardAt(i);
    }
    T* Samples() { return memory.data() + start; }
    const T* Samples() const { return memory.data() + start; }
    int32_t Count() const { return count; }

    /// Index, as seen from the row's first sample, of the first guard that has changed or sample that the reference has
    /// another of, or `none`.
    static constexpr int32_t none = INT32_MIN;
    [[nodiscard]] int32_t FirstFault(const GuardedRow& reference) const {
        for (int32_t i = -start; i < End(); ++i)
            if (IsGuard(i) ? Samples()[i] != GuardAt(i) : i >= 0 && i < count && Samples()[i] != reference.Samples()[i])
                return i;
        return none;
    }

private:
    static constexpr int32_t guardLength = 64;
    // Differs from sample to sample, so that a shifted copy of it shows as well.
    static T GuardAt(int32_t i) { return static_cast<T>(0x5BD1 + 0x2F35 * i); }
    bool IsGuard(int32_t i) const { return i < -room.before || i >= count + room.behind; }
    int32_t End() const { return static_cast<int32_t>(memory.size()) - start; }

    int32_t count;
    Room room;
    int32_t start;
    std::vector<T> memory;
};

/// The rows and parameters of one call. Two objects made with the same seed hand out the same inputs in the same order;
/// memory whose content must not matter is filled with `stray`, which should differ between the two.
class CallRows {
public:
    CallRows(uint32_t seed, Fill content, uint8_t stray) : random(seed), fill(content), filler(stray) {}

    std::mt19937 random;

    /// Exactly `count` readable samples of the call's fill.
    const uint8_t* Bytes(int32_t count) { return Input(inputBytes, count, {}, {}, 0, 255); }
    /// A row with room for stray reads; `reach` samples of it on either side have content that counts.
    const uint8_t* RoomyBytes(int32_t count, Room room, Room reach = {}) {
        return Input(inputBytes, count, room, reach, 0, 255);
    }
    int16_t* Words(int32_t count, int32_t low = INT16_MIN, int32_t high = INT16_MAX) {
        return Input(inputWords, count, {}, {}, low, high);
    }
    int16_t* RoomyWords(int32_t count, Room room, Room reach, int32_t low, int32_t high) {
        return Input(inputWords, count, room, reach, low, high);
    }

    /// Rows to be compared.
    uint8_t* Out(int32_t count, Room room = {}) { return Output(outputBytes, count, room); }
    int16_t* OutWords(int32_t count, Room room = {}) { return Output(outputWords, count, room); }
    /// Memory for the kernel's own use: only its guards are looked at.
    int16_t* Scratch(int32_t count, Room room) { return Output(scratchWords, count, room); }

    /// One of the values, noted for the failure text.
    int32_t Pick(const char* name, std::initializer_list<int32_t> values) {
        return Note(name, values.begin()[static_cast<size_t>(UpTo(random, static_cast<int32_t>(values.size()) - 1))]);
    }
    int32_t Note(const char* name, int32_t value) {
        notes << ", " << name << ' ' << value;
        return value;
    }
    std::string Notes() const { return notes.str(); }

    /// What is wrong with these outputs, seen against those of the reference; empty when nothing is.
    [[nodiscard]] std::string FaultAgainst(const CallRows& reference) const {
        std::ostringstream fault;
        Compare(fault, "byte row", outputBytes, reference.outputBytes);
        Compare(fault, "word row", outputWords, reference.outputWords);
        Compare(fault, "scratch row", scratchWords, scratchWords);
        Compare(fault, "reference byte row", reference.outputBytes, reference.outputBytes);
        Compare(fault, "reference word row", reference.outputWords, reference.outputWords);
        return fault.str();
    }

private:
    template <class T>
    using InputRows = std::vector<std::unique_ptr<T[]>>;
    template <class T>
    using OutputRows = std::vector<GuardedRow<T>>;

    int32_t Offset() { return std::max(0, UpTo(random, 47) - 16); }  // a third of the rows without one

    /// AddressSanitizer sees every access behind the room and, at offset 0, before it. The offset takes the row away from
    /// aligned addresses.
    template <class T>
    T* Input(InputRows<T>& rows, int32_t count, Room room, Room reach, int32_t low, int32_t high) {
        const int32_t start = Offset() + room.before, length = start + count + room.behind;
        rows.push_back(std::make_unique<T[]>(static_cast<size_t>(length)));
        std::fill_n(rows.back().get(), length, static_cast<T>(filler * 257));
        T* samples = rows.back().get() + start;
        FillSamples(samples - reach.before, count + reach.before + reach.behind, fill, low, high, random);
        return samples;
    }
    template <class T>
    T* Output(OutputRows<T>& rows, int32_t count, Room room) {
        rows.emplace_back(count, room, Offset(), filler);
        return rows.back().Samples();
    }
    template <class T>
    static void Compare(std::ostringstream& fault, const char* kind, const OutputRows<T>& rows,
                        const OutputRows<T>& expected) {
        for (size_t i = 0; i < rows.size(); ++i)
            if (const int32_t at = rows[i].FirstFault(expected[i]); at != GuardedRow<T>::none)
                fault << ", " << kind << ' ' << i << " of " << rows[i].Count() << " [" << at << "] is "
                      << +rows[i].Samples()[at] << ", the reference's " << +expected[i].Samples()[at];
    }

    Fill fill;
    uint8_t filler;
    std::ostringstream notes;
    InputRows<uint8_t> inputBytes;
    InputRows<int16_t> inputWords;
    OutputRows<uint8_t> outputBytes;
    OutputRows<int16_t> outputWords;
    OutputRows<int16_t> scratchWords;
};

}  // namespace clarivex
