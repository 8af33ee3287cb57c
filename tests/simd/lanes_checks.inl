// The checks of lane operations, written once over the lanes. Everything has internal linkage and uses no library
// template: code compiled for a wide processor must not be shared with other sources.
#pragma once

#include <cstdint>

#include "tests/simd/lanes_check.h"

namespace clarivex {
namespace {

int32_t Clamped(int32_t v, int32_t low, int32_t high) { return v < low ? low : v > high ? high : v; }

int32_t Wrapped(int32_t v) {
    const int32_t low = v & 0xFFFF;
    return low < 0x8000 ? low : low - 0x10000;
}

/// Numbers for the checks, every second one an extreme value.
class LaneNumbers {
public:
    int16_t Word() {
        constexpr int32_t extremes[] = {-32768, -32767, -1, 0, 1, 255, 256, 32766, 32767, 128};
        const uint32_t bits = Next();
        return static_cast<int16_t>((bits & 1) == 0 ? extremes[bits / 2 % 10]
                                                    : Wrapped(static_cast<int32_t>(bits >> 4)));
    }
    uint8_t Byte() {
        constexpr uint8_t extremes[] = {0, 1, 126, 127, 128, 129, 254, 255};
        const uint32_t bits = Next();
        return (bits & 1) == 0 ? extremes[bits / 2 % 8] : static_cast<uint8_t>(bits >> 4);
    }

private:
    uint32_t Next() {
        state = state * 1664525U + 1013904223U;
        return state >> 8;
    }
    uint32_t state = 1;
};

template <class Lanes>
class LanesCheck {
public:
    LanesCheck(LaneFault* store, int32_t storeRoom) : faults(store), room(storeRoom) {}

    int32_t Run() {
        constexpr int32_t rounds = 400;
        for (int32_t round = 0; round < rounds; ++round) {
            MakeInputs();
            CheckWords();
            CheckShifts();
            CheckGain();
            CheckBytes();
            CheckMovesToWords();
            CheckInterleaving();
            CheckUnpacked();
            CheckSums();
        }
        return count;
    }

private:
    using I16 = typename Lanes::I16;
    using U8 = typename Lanes::U8;
    using Pair = typename Lanes::Pair;
    static constexpr int32_t words = Lanes::width;
    static constexpr int32_t bytes = 2 * Lanes::width;

    void MakeInputs() {
        for (int32_t i = 0; i < bytes; ++i) {
            for (auto& row : wordRows) row[i] = numbers.Word();
            bytesA[i] = numbers.Byte();
            bytesB[i] = numbers.Byte();
        }
    }

    void Compare(const char* operation, int32_t lane, int32_t expected, int32_t actual) {
        if (expected == actual) return;
        if (count < room) faults[count] = {operation, lane, expected, actual};
        ++count;
    }

    template <class Expected>
    void ExpectWords(const char* operation, I16 actual, Expected expected) {
        int16_t stored[words];
        Lanes::Store(stored, actual);
        for (int32_t i = 0; i < words; ++i) Compare(operation, i, expected(i), stored[i]);
    }
    template <class Expected>
    void ExpectBytes(const char* operation, U8 actual, Expected expected) {
        uint8_t stored[bytes];
        Lanes::StoreBytes(stored, actual);
        for (int32_t i = 0; i < bytes; ++i) Compare(operation, i, expected(i), stored[i]);
    }

    void CheckWords() {
        const I16 a = Lanes::Load(wordRows[0]);
        const I16 b = Lanes::Load(wordRows[0] + words);
        const auto expect = [&](const char* operation, I16 actual, auto expected) {
            ExpectWords(operation, actual, [&](int32_t i) { return expected(wordRows[0][i], wordRows[0][words + i]); });
        };
        expect("Load", a, [](int32_t x, int32_t) { return x; });
        expect("Set", Lanes::Set(wordRows[0][0]), [&](int32_t, int32_t) { return wordRows[0][0]; });
        expect("AddWrap", Lanes::AddWrap(a, b), [](int32_t x, int32_t y) { return Wrapped(x + y); });
        expect("SubWrap", Lanes::SubWrap(a, b), [](int32_t x, int32_t y) { return Wrapped(x - y); });
        expect("AddSat", Lanes::AddSat(a, b), [](int32_t x, int32_t y) { return Clamped(x + y, -32768, 32767); });
        expect("SubSat", Lanes::SubSat(a, b), [](int32_t x, int32_t y) { return Clamped(x - y, -32768, 32767); });
        expect("MulHigh", Lanes::MulHigh(a, b), [](int32_t x, int32_t y) { return (x * y) >> 16; });
        expect("MulLow", Lanes::MulLow(a, b), [](int32_t x, int32_t y) { return Wrapped(x * y); });
        expect("Min", Lanes::Min(a, b), [](int32_t x, int32_t y) { return x < y ? x : y; });
        expect("Max", Lanes::Max(a, b), [](int32_t x, int32_t y) { return x > y ? x : y; });
    }

    template <int n>
    void CheckShiftsBy() {
        const I16 a = Lanes::Load(wordRows[0]);
        ExpectWords("ShiftLeft", Lanes::template ShiftLeft<n>(a),
                    [&](int32_t i) { return Wrapped(wordRows[0][i] << n); });
        ExpectWords("ShiftRight", Lanes::template ShiftRight<n>(a), [&](int32_t i) { return wordRows[0][i] >> n; });
        ExpectWords("ShiftRightLogical", Lanes::template ShiftRightLogical<n>(a),
                    [&](int32_t i) { return Wrapped((wordRows[0][i] & 0xFFFF) >> n); });
    }
    void CheckShifts() {
        CheckShiftsBy<1>();
        CheckShiftsBy<2>();
        CheckShiftsBy<4>();
        CheckShiftsBy<7>();
        CheckShiftsBy<8>();
    }

    /// Gains up to 31 on measures of ±510.
    void CheckGain() {
        const int32_t gain = numbers.Byte() % 32;
        int16_t measures[words];
        for (int16_t& measure : measures)
            measure = static_cast<int16_t>(numbers.Byte() + numbers.Byte() - numbers.Byte() - numbers.Byte());
        const auto factor = Lanes::GainFactor(static_cast<int16_t>(gain));
        ExpectWords("GainOver32", Lanes::GainOver32(Lanes::Load(measures), factor),
                    [&](int32_t i) { return (measures[i] * gain + 16) >> 5; });
    }

    void CheckBytes() {
        const U8 a = Lanes::LoadBytes(bytesA);
        const U8 b = Lanes::LoadBytes(bytesB);
        const auto expect = [&](const char* operation, U8 actual, auto expected) {
            ExpectBytes(operation, actual, [&](int32_t i) { return expected(bytesA[i], bytesB[i]); });
        };
        expect("LoadBytes", a, [](int32_t x, int32_t) { return x; });
        expect("SetBytes", Lanes::SetBytes(bytesA[0]), [&](int32_t, int32_t) { return bytesA[0]; });
        expect("MinBytes", Lanes::MinBytes(a, b), [](int32_t x, int32_t y) { return x < y ? x : y; });
        expect("MaxBytes", Lanes::MaxBytes(a, b), [](int32_t x, int32_t y) { return x > y ? x : y; });
        expect("AddBytes", Lanes::AddBytes(a, b), [](int32_t x, int32_t y) { return Clamped(x + y, 0, 255); });
        expect("SubBytes", Lanes::SubBytes(a, b), [](int32_t x, int32_t y) { return Clamped(x - y, 0, 255); });
        expect("Average", Lanes::Average(a, b), [](int32_t x, int32_t y) { return (x + y + 1) >> 1; });
        expect("AverageDown", Lanes::AverageDown(a, b), [](int32_t x, int32_t y) { return (x + y) >> 1; });
        expect("RaiseUpperHalf", Lanes::RaiseUpperHalf(a),
               [](int32_t x, int32_t) { return x < 128 ? x : Clamped(x + 1, 0, 255); });
        ExpectBytes("Pack", Lanes::Pack(Lanes::Load(wordRows[0]), Lanes::Load(wordRows[0] + words)),
                    [&](int32_t i) { return Clamped(wordRows[0][i], 0, 255); });
        ExpectBytes("PackInterleaved", Lanes::PackInterleaved(Lanes::Load(wordRows[0]), Lanes::Load(wordRows[1])),
                    [&](int32_t i) { return Clamped(wordRows[i % 2][i / 2], 0, 255); });
    }

    void CheckMovesToWords() {
        const U8 v = Lanes::LoadBytes(bytesA);
        const auto expect = [&](const char* operation, I16 actual, int32_t first, int32_t step, auto expected) {
            ExpectWords(operation, actual, [&](int32_t i) { return expected(bytesA[first + step * i]); });
        };
        const auto same = [](int32_t b) { return b; };
        const auto signedTwice = [](int32_t b) { return 256 * (b - 128) + ((b - 128) & 255); };
        const auto centredTwice = [](int32_t b) { return 257 * b - 32768; };
        expect("LoadU8", Lanes::LoadU8(bytesA), 0, 1, same);
        expect("Low", Lanes::Low(v), 0, 1, same);
        expect("High", Lanes::High(v), words, 1, same);
        expect("EvenBytes", Lanes::EvenBytes(v), 0, 2, same);
        expect("OddBytes", Lanes::OddBytes(v), 1, 2, same);
        expect("SignedRepeatLow", Lanes::SignedRepeatLow(v), 0, 1, signedTwice);
        expect("SignedRepeatHigh", Lanes::SignedRepeatHigh(v), words, 1, signedTwice);
        expect("SignedRepeatEven", Lanes::SignedRepeatEven(v), 0, 2, signedTwice);
        expect("SignedRepeatOdd", Lanes::SignedRepeatOdd(v), 1, 2, signedTwice);
        expect("CentredRepeatLow", Lanes::CentredRepeatLow(v), 0, 1, centredTwice);
        expect("CentredRepeatHigh", Lanes::CentredRepeatHigh(v), words, 1, centredTwice);
    }

    /// Stores at the end of a row: the byte behind it must stay.
    template <int32_t sources, class Store, class Expected>
    void CheckInterleaved(const char* operation, Store store, Expected expected) {
        constexpr uint8_t guard = 0x5A;
        uint8_t out[sources * bytes + 1];
        out[sources * bytes] = guard;
        store(out);
        for (int32_t i = 0; i < sources * bytes; ++i) Compare(operation, i, expected(i % sources, i / sources), out[i]);
        Compare(operation, sources * bytes, guard, out[sources * bytes]);
    }
    void CheckInterleaving() {
        const uint8_t* byteRows[] = {bytesA, bytesB};
        CheckInterleaved<2>(
            "StoreInterleaved2",
            [&](uint8_t* out) { Lanes::StoreInterleaved2(out, Lanes::LoadBytes(bytesA), Lanes::LoadBytes(bytesB)); },
            [&](int32_t row, int32_t i) { return byteRows[row][i]; });
        CheckInterleaved<3>(
            "StoreTriples",
            [&](uint8_t* out) {
                Lanes::StoreTriples(out, LoadPair(wordRows[0]), LoadPair(wordRows[1]), LoadPair(wordRows[2]));
            },
            [&](int32_t row, int32_t i) { return Clamped(wordRows[row][i], 0, 255); });
    }

    /// Unpacked words may stand in any order; unpacking the numbers of the bytes tells which.
    void CheckUnpacked() {
        uint8_t numbersOfBytes[bytes];
        for (int32_t i = 0; i < bytes; ++i) numbersOfBytes[i] = static_cast<uint8_t>(i);
        int16_t order[bytes];
        StorePair(order, Lanes::Unpack(Lanes::LoadBytes(numbersOfBytes)));
        const auto expect = [&](const char* operation, Pair actual, auto expected) {
            int16_t stored[bytes];
            StorePair(stored, actual);
            for (int32_t i = 0; i < bytes; ++i)
                Compare(operation, i, expected(bytesA[order[i]], bytesB[order[i]]), stored[i]);
        };
        const U8 a = Lanes::LoadBytes(bytesA);
        const U8 b = Lanes::LoadBytes(bytesB);
        const int32_t weight = 64 - (1 + numbers.Byte() % 127);  // −63 … 63
        expect("Unpack", Lanes::Unpack(a), [](int32_t x, int32_t) { return x; });
        expect("Sum", Lanes::Sum(a, b), [](int32_t x, int32_t y) { return x + y; });
        expect("WeighSum", Lanes::WeighSum(a, b, Lanes::MakeWeights(64, weight)),
               [&](int32_t x, int32_t y) { return 64 * x + weight * y; });
        uint8_t packed[bytes];
        Lanes::StoreBytes(packed, Lanes::PackUnpacked(LoadPair(wordRows[0])));
        for (int32_t i = 0; i < bytes; ++i)
            Compare("PackUnpacked", i, Clamped(wordRows[0][i], 0, 255), packed[order[i]]);
    }

    /// Sums can only be looked at packed: shifted to their upper half, they are the upper words of what they should be.
    void CheckSums() {
        const int16_t* a = wordRows[0];
        const int16_t* b = wordRows[1];
        const int16_t* tapWords = wordRows[2];
        const auto expectUpper = [&](const char* operation, typename Lanes::Sums actual, auto expected) {
            ExpectWords(operation, Lanes::PackSums(Lanes::template ShiftSums<16>(actual)),
                        [&](int32_t i) { return static_cast<int32_t>(static_cast<uint64_t>(expected(i))) >> 16; });
        };
        const auto taps = Lanes::MakeTapPair(tapWords[0], tapWords[1]);
        const int32_t start = 65535 * numbers.Word();
        const auto sums = Lanes::AddProducts(Lanes::SetSums(start), Lanes::Load(a), Lanes::Load(b), taps);
        const auto sum = [&](int32_t i) {
            const int64_t wide = int64_t{start} + int64_t{a[i]} * tapWords[0] + int64_t{b[i]} * tapWords[1];
            return static_cast<int64_t>(static_cast<int32_t>(static_cast<uint64_t>(wide)));
        };
        expectUpper("AddProducts", sums, sum);
        const int32_t other = 65535 * numbers.Word();
        const auto others = Lanes::SetSums(other);
        expectUpper("AddSums", Lanes::AddSums(sums, others), [&](int32_t i) { return sum(i) + other; });
        expectUpper("SubSums", Lanes::SubSums(sums, others), [&](int32_t i) { return sum(i) - other; });
        expectUpper("MinSums", Lanes::MinSums(sums, others),
                    [&](int32_t i) { return sum(i) < other ? sum(i) : other; });
        expectUpper("MaxSums", Lanes::MaxSums(sums, others),
                    [&](int32_t i) { return sum(i) > other ? sum(i) : other; });
        ExpectWords("PackSums", Lanes::PackSums(Lanes::template ShiftSums<14>(sums)),
                    [&](int32_t i) { return Clamped(static_cast<int32_t>(sum(i) >> 14), -32768, 32767); });
        ExpectWords("MulHighSums", Lanes::PackSums(Lanes::MulHighSums(Lanes::template ShiftSums<8>(sums), tapWords[2])),
                    [&](int32_t i) {
                        return Clamped(static_cast<int32_t>(((sum(i) >> 8) * tapWords[2]) >> 16), -32768, 32767);
                    });
        int16_t stored[bytes + 1];
        stored[bytes] = 0x5A5A;
        Lanes::StoreInterleavedWords(stored, Lanes::Load(a), Lanes::Load(b));
        for (int32_t i = 0; i < bytes; ++i)
            Compare("StoreInterleavedWords", i, i % 2 == 0 ? a[i / 2] : b[i / 2], stored[i]);
        Compare("StoreInterleavedWords", bytes, 0x5A5A, stored[bytes]);
    }

    static Pair LoadPair(const int16_t* p) { return {Lanes::Load(p), Lanes::Load(p + words)}; }
    static void StorePair(int16_t* p, Pair v) {
        Lanes::Store(p, v.low);
        Lanes::Store(p + words, v.high);
    }

    LaneFault* faults;
    int32_t room;
    int32_t count = 0;
    LaneNumbers numbers;
    int16_t wordRows[3][bytes];  // two registers each
    uint8_t bytesA[bytes];
    uint8_t bytesB[bytes];
};

}  // namespace
}  // namespace clarivex
