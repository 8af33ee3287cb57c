// One body of checks for the lanes of any width: each operation's result, element by element, against its meaning.
//
// It is compiled for wide processors, so all of it is in unnamed namespaces and takes nothing from the library that could
// leave an inline function behind.
#pragma once

#include "simd/lanes.h"
#include "tests/simd/lane_checks.h"

namespace clarivex {
namespace {

constexpr int32_t Limit(int64_t v, int32_t low, int32_t high) {
    return static_cast<int32_t>(v < low ? low : v > high ? high : v);
}
constexpr int32_t Word(int64_t v) { return static_cast<int16_t>(static_cast<uint64_t>(v)); }
constexpr int32_t Wide(int64_t v) { return static_cast<int32_t>(static_cast<uint64_t>(v)); }
constexpr int32_t LimitToWord(int64_t v) { return Limit(v, -32768, 32767); }
constexpr int32_t LimitToByte(int64_t v) { return Limit(v, 0, 255); }

/// The word 256·s + (s mod 256), s = byte − 128.
constexpr int32_t SignedRepeat(int32_t byte) { return 256 * (byte - 128) + ((byte - 128) & 255); }

template <KernelLanes Lanes>
class LaneChecker {
public:
    /// Takes the samples from lane `first` on.
    LaneChecker(const LaneSamples& samples, int32_t first, ReportLaneFault report)
        : samples(samples),
          first(first),
          report(report),
          p(Row(0)),
          q(Row(1)),
          x(samples.bytes[0] + 2 * first),
          y(samples.bytes[1] + 2 * first) {}

    void CheckAll() {
        CheckWords();
        CheckBytes();
        CheckConversions();
        CheckPairs();
        if constexpr (TripleLanes<Lanes>) CheckTriples();
        CheckTiles();
        CheckSums();
    }

private:
    static constexpr int32_t width = Lanes::width;
    using I16 = typename Lanes::I16;
    using U8 = typename Lanes::U8;
    using Pair = typename Lanes::Pair;
    using Sums = typename Lanes::Sums;

    const int16_t* Row(int32_t row) const { return samples.words[row] + first; }

    void CheckWords() {
        const I16 a = Lanes::Load(p), b = Lanes::Load(q);
        const int16_t gain = static_cast<int16_t>(1 + (q[0] & 31) % 31);
        Words("Set", Lanes::Set(p[0]), [&](int32_t) { return p[0]; });
        Words("InRegister", Lanes::InRegister(a), [&](int32_t i) { return p[i]; });
        Words("LoadU8", Lanes::LoadU8(x), [&](int32_t i) { return x[i]; });
        Words("AddWrap", Lanes::AddWrap(a, b), [&](int32_t i) { return Word(p[i] + q[i]); });
        Words("SubWrap", Lanes::SubWrap(a, b), [&](int32_t i) { return Word(p[i] - q[i]); });
        Words("AddSat", Lanes::AddSat(a, b), [&](int32_t i) { return LimitToWord(p[i] + q[i]); });
        Words("SubSat", Lanes::SubSat(a, b), [&](int32_t i) { return LimitToWord(p[i] - q[i]); });
        Words("MulHigh", Lanes::MulHigh(a, b), [&](int32_t i) { return p[i] * q[i] >> 16; });
        Words("MulLow", Lanes::MulLow(a, b), [&](int32_t i) { return Word(p[i] * q[i]); });
        Words("Min", Lanes::Min(a, b), [&](int32_t i) { return p[i] < q[i] ? p[i] : q[i]; });
        Words("Max", Lanes::Max(a, b), [&](int32_t i) { return p[i] > q[i] ? p[i] : q[i]; });
        Words("ShiftLeft", Lanes::template ShiftLeft<7>(a), [&](int32_t i) { return Word(p[i] * 128); });
        Words("ShiftRight", Lanes::template ShiftRight<3>(a), [&](int32_t i) { return p[i] >> 3; });
        Words("ShiftRightLogical", Lanes::template ShiftRightLogical<1>(a),
              [&](int32_t i) { return (p[i] & 65535) / 2; });
        Words("GainOver32", Lanes::GainOver32(Lanes::template ShiftRight<5>(a), Lanes::GainFactor(gain)),
              [&](int32_t i) { return ((p[i] >> 5) * gain + 16) >> 5; });
    }

    void CheckBytes() {
        const U8 a = Lanes::LoadBytes(x), b = Lanes::LoadBytes(y);
        Bytes("LoadBytes", a, [&](int32_t i) { return x[i]; });
        Bytes("MinBytes", Lanes::MinBytes(a, b), [&](int32_t i) { return x[i] < y[i] ? x[i] : y[i]; });
        Bytes("MaxBytes", Lanes::MaxBytes(a, b), [&](int32_t i) { return x[i] > y[i] ? x[i] : y[i]; });
        Bytes("AddBytes", Lanes::AddBytes(a, b), [&](int32_t i) { return LimitToByte(x[i] + y[i]); });
        Bytes("SubBytes", Lanes::SubBytes(a, b), [&](int32_t i) { return LimitToByte(x[i] - y[i]); });
        Bytes("Average", Lanes::Average(a, b), [&](int32_t i) { return (x[i] + y[i] + 1) / 2; });
        Bytes("AverageDown", Lanes::AverageDown(a, b), [&](int32_t i) { return (x[i] + y[i]) / 2; });
        Bytes("LeanBytes", Lanes::template LeanBytes<11>(a, b),
              [&](int32_t i) { return (53 * x[i] + 11 * y[i]) >> 6; });
        Bytes("RaiseUpperHalf", Lanes::RaiseUpperHalf(a),
              [&](int32_t i) { return x[i] < 128 ? x[i] : LimitToByte(x[i] + 1); });
        Stored<uint8_t, 4 * width>(
            "StoreInterleaved2", [&](uint8_t* out) { Lanes::StoreInterleaved2(out, a, b); },
            [&](int32_t i) { return i % 2 == 0 ? x[i / 2] : y[i / 2]; });
    }

    void CheckConversions() {
        const U8 v = Lanes::LoadBytes(x);
        const I16 a = Lanes::Load(p), b = Lanes::Load(q);
        Words("EvenBytes", Lanes::EvenBytes(v), [&](int32_t i) { return x[2 * i]; });
        Words("OddBytes", Lanes::OddBytes(v), [&](int32_t i) { return x[2 * i + 1]; });
        Words("SignedRepeatLow", Lanes::SignedRepeatLow(v), [&](int32_t i) { return SignedRepeat(x[i]); });
        Words("SignedRepeatHigh", Lanes::SignedRepeatHigh(v), [&](int32_t i) { return SignedRepeat(x[width + i]); });
        Words("CentredRepeatLow", Lanes::CentredRepeatLow(v), [&](int32_t i) { return 257 * x[i] - 32768; });
        Words("CentredRepeatHigh", Lanes::CentredRepeatHigh(v), [&](int32_t i) { return 257 * x[width + i] - 32768; });
        Bytes("Pack", Lanes::Pack(a, b), [&](int32_t i) { return LimitToByte(i < width ? p[i] : q[i - width]); });
        Bytes("PackInterleaved", Lanes::PackInterleaved(a, b),
              [&](int32_t i) { return LimitToByte(i % 2 == 0 ? p[i / 2] : q[i / 2]); });
        const auto pair = [&](int32_t row) -> Pair { return {Lanes::Load(Row(row)), Lanes::Load(Row(row + 1))}; };
        Stored<uint8_t, 4 * width>(
            "StorePacked2", [&](uint8_t* out) { Lanes::StorePacked2(out, pair(0), pair(2)); },
            [&](int32_t i) { return LimitToByte(Row(i % 2 * 2 + i / 2 / width)[i / 2 % width]); });
    }

    void CheckPairs() {
        const U8 a = Lanes::LoadBytes(x), b = Lanes::LoadBytes(y);
        const int32_t weightA = p[0] & 127, weightB = Limit(q[0] % 128, -128, 127 - weightA);
        const auto weights = Lanes::MakeWeights(weightA, weightB);
        Unpacked("Unpack", Lanes::Unpack(a), [&](int32_t i) { return x[i]; });
        Unpacked("Centre and Repeat", Lanes::Repeat(Lanes::Centre(a)),
                 [&](int32_t i) { return SignedRepeat(Limit(x[i] + (x[i] < 128 ? 0 : 1), 0, 255)); });
        Unpacked("Sum", Lanes::Sum(a, b), [&](int32_t i) { return x[i] + y[i]; });
        Unpacked("WeighSum", Lanes::WeighSum(Lanes::Together(a, b), weights),
                 [&](int32_t i) { return x[i] * weightA + y[i] * weightB; });
        const Pair sides = Lanes::Sum(a, b);
        const auto limited = [&](int32_t offset) {
            const I16 less = Lanes::Set(static_cast<int16_t>(offset));
            return Lanes::PackUnpacked({Lanes::SubWrap(sides.low, less), Lanes::SubWrap(sides.high, less)});
        };
        Bytes("PackUnpacked", limited(127), [&](int32_t i) { return LimitToByte(x[i] + y[i] - 127); });
    }

    void CheckTriples() {
        const int16_t pulls[3] = {static_cast<int16_t>(p[0] & 255), static_cast<int16_t>(q[0] & 127), 0};
        Stored<uint8_t, 6 * width>(
            "StorePulledTriples",
            [&](uint8_t* out) { Lanes::StorePulledTriples(out, x + 1, Lanes::MakeTripleWeights(pulls)); },
            [&](int32_t i) {
                const uint8_t* own = x + 1 + i / 3 * 2 + i % 3 / 2;
                return own[0] + ((own[i % 3 == 0 ? -1 : 1] - own[0]) * pulls[i % 3] >> 8);
            });
    }

    /// Rows that begin at any column of the samples.
    void CheckTiles() {
        constexpr int32_t rows = 2 * width, columns = 16, length = columns + 1;
        uint8_t turned[columns * rows], out[rows][length] = {};
        const uint8_t* in[rows];
        uint8_t* targets[rows];
        for (int32_t i = 0; i < rows; ++i) {
            in[i] = samples.bytes[i % 2] + i % 32;
            targets[i] = out[i];
        }
        U8 tile[columns];
        Lanes::LoadColumns(in, 1, tile);
        for (int32_t i = 0; i < columns; ++i) Lanes::StoreBytes(turned + i * rows, tile[i]);
        for (int32_t i = 0; i < columns * rows; ++i)
            if (turned[i] != in[i % rows][1 + i / rows])
                return report("LoadColumns", i, turned[i], in[i % rows][1 + i / rows]);
        Lanes::StoreColumns(targets, 1, turned);
        for (int32_t i = 0; i < rows * length; ++i) {
            const int32_t y = i / length, x = i % length, expected = x == 0 ? 0 : in[y][x];
            if (out[y][x] != expected) return report("StoreColumns", i, out[y][x], expected);
        }
    }

    void CheckSums() {
        const I16 a = Lanes::Load(p), b = Lanes::Load(q);
        const int16_t tapA = *Row(2), tapB = *Row(3);
        const int32_t start = 65536 * *Row(4);
        const auto made = [&](int32_t i) { return Wide(int64_t{start} + int64_t{p[i]} * tapA + int64_t{q[i]} * tapB); };
        const auto product = [&](int32_t i) { return p[i] * tapB; };
        const Sums s = Lanes::AddProducts(Lanes::SetSums(start), a, b, Lanes::MakeTapPair(tapA, tapB));
        const Sums t = Lanes::AddProducts(Lanes::SetSums(0), b, a, Lanes::MakeTapPair(0, tapB));
        SumsAre("AddProducts", s, made);
        SumsAre("AddSums", Lanes::AddSums(s, t), [&](int32_t i) { return Wide(int64_t{made(i)} + product(i)); });
        SumsAre("SubSums", Lanes::SubSums(s, t), [&](int32_t i) { return Wide(int64_t{made(i)} - product(i)); });
        SumsAre("MinSums", Lanes::MinSums(s, t), [&](int32_t i) { return Limit(made(i), INT32_MIN, product(i)); });
        SumsAre("MaxSums", Lanes::MaxSums(s, t), [&](int32_t i) { return Limit(made(i), product(i), INT32_MAX); });
        SumsAre("ShiftSums", Lanes::template ShiftSums<5>(s), [&](int32_t i) { return made(i) >> 5; });
        SumsAre("MulHighSums", Lanes::MulHighSums(Lanes::template ShiftSums<8>(s), tapB),
                [&](int32_t i) { return Wide((int64_t{made(i) >> 8} * tapB) >> 16); });
        Words("PackSums", Lanes::PackSums(Lanes::template ShiftSums<14>(s)),
              [&](int32_t i) { return LimitToWord(made(i) >> 14); });
        Stored<int16_t, 2 * width>(
            "StoreInterleavedWords", [&](int16_t* out) { Lanes::StoreInterleavedWords(out, a, b); },
            [&](int32_t i) { return i % 2 == 0 ? p[i / 2] : q[i / 2]; });
    }

    template <class Plain>
    void Words(const char* operation, I16 words, const Plain& plain) {
        Stored<int16_t, width>(
            operation, [&](int16_t* out) { Lanes::Store(out, words); }, plain);
    }

    template <class Plain>
    void Bytes(const char* operation, U8 bytes, const Plain& plain) {
        Stored<uint8_t, 2 * width>(
            operation, [&](uint8_t* out) { Lanes::StoreBytes(out, bytes); }, plain);
    }

    /// Both bytes of unpacked words.
    template <class Plain>
    void Unpacked(const char* operation, Pair words, const Plain& plain) {
        const auto upper = [](I16 word) { return Lanes::template ShiftRightLogical<8>(word); };
        const auto lower = [&](I16 word) { return upper(Lanes::template ShiftLeft<8>(word)); };
        Bytes(operation, Lanes::PackUnpacked({lower(words.low), lower(words.high)}),
              [&](int32_t i) { return plain(i) & 255; });
        Bytes(operation, Lanes::PackUnpacked({upper(words.low), upper(words.high)}),
              [&](int32_t i) { return plain(i) >> 8 & 255; });
    }

    /// Both halves of sums; doubling brings the lower one up.
    template <class Plain>
    void SumsAre(const char* operation, Sums sums, const Plain& plain) {
        Words(operation, Lanes::PackSums(Lanes::template ShiftSums<16>(sums)),
              [&](int32_t i) { return plain(i) >> 16; });
        for (int32_t bit = 0; bit < 16; ++bit) sums = Lanes::AddSums(sums, sums);
        Words(operation, Lanes::PackSums(Lanes::template ShiftSums<16>(sums)),
              [&](int32_t i) { return Word(plain(i)); });
    }

    /// What a store writes from an unaligned element on, and that it writes nothing before and behind.
    template <class T, int32_t count, class Store, class Plain>
    void Stored(const char* operation, const Store& store, const Plain& plain) {
        constexpr T guard = 0x6B;
        T out[count + 2];
        for (T& element : out) element = guard;
        store(out + 1);
        for (int32_t i = -1; i <= count; ++i) {
            const int32_t expected = i < 0 || i == count ? guard : plain(i);
            if (out[1 + i] != expected) return report(operation, i, out[1 + i], expected);
        }
    }

    const LaneSamples& samples;
    int32_t first;
    ReportLaneFault report;
    const int16_t* p;
    const int16_t* q;
    const uint8_t* x;
    const uint8_t* y;
};

template <KernelLanes Lanes>
void CheckLanes(const LaneSamples& samples, ReportLaneFault report) {
    for (int32_t first = 0; first < LaneSamples::mostLanes; first += Lanes::width)
        LaneChecker<Lanes>(samples, first, report).CheckAll();
}

}  // namespace
}  // namespace clarivex
