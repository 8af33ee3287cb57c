// What a set of lanes has to offer: the operations that kernels are written in, and what each of them means.
//
// A register of words, I16, has `width` lanes of 16 bits with sign; a register of bytes, U8, has twice as many of 8 bits
// without. Lane i is the i-th element in memory, except in pairs and sums. A result wraps to its lane unless its line says
// that it is limited. Nothing but what is named is read or written, and no pointer need be aligned.
#pragma once

#include <concepts>
#include <cstdint>

namespace clarivex {

/// What an operation of the lanes L gives.
template <class T, class L>
concept GivesWords = std::same_as<T, typename L::I16>;
template <class T, class L>
concept GivesBytes = std::same_as<T, typename L::U8>;
template <class T, class L>
concept GivesPair = std::same_as<T, typename L::Pair>;
template <class T, class L>
concept GivesSums = std::same_as<T, typename L::Sums>;

/// Arithmetic of words.
template <class L>
concept WordLanes = requires(typename L::I16 a, typename L::I16 b, const int16_t* row, int16_t* out,
                             const uint8_t* bytes, int16_t v) {
    { L::width } -> std::convertible_to<int32_t>;
    // Whether long sums of pairs of registers are made for one of the two after the other, since both fill more registers
    // than there are.
    { L::sumsByHalves } -> std::convertible_to<bool>;
    // Whether eight taps and what they are multiplied with are better taken in two halves, for want of registers.
    { L::tapsByHalves } -> std::convertible_to<bool>;
    { L::Set(v) } -> GivesWords<L>;                            // v in all lanes
    { L::Load(row) } -> GivesWords<L>;                         // `width` words
    { L::LoadU8(bytes) } -> GivesWords<L>;                     // `width` bytes, each as a word of 0 … 255
    { L::Store(out, a) } -> std::same_as<void>;                // `width` words
    { L::InRegister(a) } -> GivesWords<L>;                     // a; keeps compilers from loading it anew at each use
    { L::AddWrap(a, b) } -> GivesWords<L>;                     // a + b
    { L::SubWrap(a, b) } -> GivesWords<L>;                     // a − b
    { L::AddSat(a, b) } -> GivesWords<L>;                      // a + b, limited to −32768 … 32767
    { L::SubSat(a, b) } -> GivesWords<L>;                      // a − b, limited likewise
    { L::MulHigh(a, b) } -> GivesWords<L>;                     // the upper 16 bits of a · b: rounded down
    { L::MulLow(a, b) } -> GivesWords<L>;                      // a · b
    { L::Min(a, b) } -> GivesWords<L>;                         // the smaller
    { L::Max(a, b) } -> GivesWords<L>;                         // the larger
    { L::template ShiftLeft<7>(a) } -> GivesWords<L>;          // a · 2ⁿ
    { L::template ShiftRight<7>(a) } -> GivesWords<L>;         // a / 2ⁿ, rounded down
    { L::template ShiftRightLogical<7>(a) } -> GivesWords<L>;  // the same of a as 0 … 65535
    {L::GainFactor(v)};                                        // a gain of 1 … 31 in the form that GainOver32 wants
    { L::GainOver32(a, L::GainFactor(v)) } -> GivesWords<L>;   // (a · gain + 16) >> 5, if it fits
};

/// Arithmetic of bytes.
template <class L>
concept ByteLanes = requires(typename L::U8 a, typename L::U8 b, const uint8_t* row, uint8_t* out) {
    { L::LoadBytes(row) } -> GivesBytes<L>;                     // 2 · `width` bytes
    { L::StoreBytes(out, a) } -> std::same_as<void>;            // 2 · `width` bytes
    { L::MinBytes(a, b) } -> GivesBytes<L>;                     // the smaller
    { L::MaxBytes(a, b) } -> GivesBytes<L>;                     // the larger
    { L::AddBytes(a, b) } -> GivesBytes<L>;                     // a + b, at most 255
    { L::SubBytes(a, b) } -> GivesBytes<L>;                     // a − b, at least 0
    { L::Average(a, b) } -> GivesBytes<L>;                      // (a + b + 1) >> 1
    { L::AverageDown(a, b) } -> GivesBytes<L>;                  // (a + b) >> 1
    { L::template LeanBytes<11>(a, b) } -> GivesBytes<L>;       // a pulled towards b by 64ths, 0 … 63: rounded down
    { L::RaiseUpperHalf(a) } -> GivesBytes<L>;                  // 128 … 254 raised by one
    { L::StoreInterleaved2(out, a, b) } -> std::same_as<void>;  // a[0] b[0] a[1] b[1] …: 4 · `width` bytes
};

/// Between bytes and words. "Signed" is s = byte − 128; "repeated" is a byte in both halves of its word.
template <class L>
concept ConvertingLanes = requires(typename L::U8 v, typename L::I16 a, typename L::I16 b, uint8_t* out) {
    { L::EvenBytes(v) } -> GivesWords<L>;           // bytes 0, 2, 4 … as words of 0 … 255
    { L::OddBytes(v) } -> GivesWords<L>;            // bytes 1, 3, 5 …
    { L::SignedRepeatLow(v) } -> GivesWords<L>;     // 256·s + (s mod 256) of the first `width` bytes
    { L::SignedRepeatHigh(v) } -> GivesWords<L>;    // … of the others
    { L::CentredRepeatLow(v) } -> GivesWords<L>;    // 257 · byte − 32768 of the first `width` bytes
    { L::CentredRepeatHigh(v) } -> GivesWords<L>;   // … of the others
    { L::Pack(a, b) } -> GivesBytes<L>;             // a's words, then b's, limited to 0 … 255
    { L::PackInterleaved(a, b) } -> GivesBytes<L>;  // a[0] b[0] a[1] b[1] …, limited likewise
    // The same of two registers in memory order each: 4 · `width` bytes.
    { L::StorePacked2(out, {a, a}, {b, b}) } -> std::same_as<void>;
};

/// Pairs of registers of words, `low` and `high`. What is made of bytes stands in an order of the width's own, the same in
/// all pairs, and PackUnpacked undoes it.
template <class L>
concept PairLanes = requires(typename L::U8 a, typename L::U8 b, typename L::Pair pair, uint8_t* out) {
    { L::Unpack(a) } -> GivesPair<L>;                         // bytes as words of 0 … 255
    { L::Centre(a) } -> GivesBytes<L>;                        // s mod 256, bytes from 128 raised by one
    { L::Repeat(a) } -> GivesPair<L>;                         // bytes in both halves of their words
    { L::Sum(a, b) } -> GivesPair<L>;                         // a + b
    {L::MakeWeights(64, -64)};                                // weights of a and b: 0 … 127 and −128 … 127
    { L::Together(a, b) } -> std::same_as<typename L::Both>;  // both, as WeighSum takes them
    { L::WeighSum(L::Together(a, b), L::MakeWeights(64, -64)) } -> GivesPair<L>;  // their sum, if 16 bits hold it
    { L::PackUnpacked(pair) } -> GivesBytes<L>;                                   // limited to 0 … 255
};

/// Three outputs for each two inputs.
template <class L>
concept TripleLanes = requires(const int16_t* weights, const uint8_t* in, uint8_t* out) {
    {L::MakeTripleWeights(weights)};  // three of 0 … 255, in 256ths
    // 6 · `width` outputs: in[2n] pulled towards in[2n − 1], in[2n] towards in[2n + 1], in[2n + 1] towards in[2n + 2], each by
    // its weight and rounded down. 64 samples more on either side of those named may be read.
    { L::StorePulledTriples(out, in, L::MakeTripleWeights(weights)) } -> std::same_as<void>;
};

/// Rows as many as a register has bytes, in tiles of 16 columns: a column of a tile is a register of bytes, the first row's first.
template <class L>
concept TileLanes = requires(const uint8_t* const* rows, uint8_t* const* out, typename L::U8 (&tile)[16],
                             uint8_t* columns) {
    { L::LoadColumns(rows, 1, tile) } -> std::same_as<void>;     // columns 1 … 16 of rows, one behind the other
    { L::StoreColumns(out, 1, columns) } -> std::same_as<void>;  // the reverse
};

/// Sums of 32 bits, one for each word of a register, in an order of the width's own that PackSums undoes.
template <class L>
concept SumLanes = requires(typename L::Sums a, typename L::Sums b, typename L::I16 words, int16_t v, int16_t* out) {
    { L::SetSums(1) } -> GivesSums<L>;  // the number in all of them
    { L::MakeTapPair(v, v) } -> std::same_as<typename L::TapPair>;
    // a + first words · first tap + second words · second tap
    { L::AddProducts(a, words, words, L::MakeTapPair(v, v)) } -> GivesSums<L>;
    { L::AddSums(a, b) } -> GivesSums<L>;             // a + b
    { L::SubSums(a, b) } -> GivesSums<L>;             // a − b
    { L::MinSums(a, b) } -> GivesSums<L>;             // the smaller
    { L::MaxSums(a, b) } -> GivesSums<L>;             // the larger
    { L::template ShiftSums<8>(a) } -> GivesSums<L>;  // a / 2ⁿ, rounded down
    { L::MulHighSums(a, v) } -> GivesSums<L>;         // (a · v) >> 16, a −2²³ … 2²³ − 1
    { L::PackSums(a) } -> GivesWords<L>;              // limited to −32768 … 32767
    { L::StoreInterleavedWords(out, words, words) } -> std::same_as<void>;  // 2 · `width` words by turns
};

/// All that kernels ask for.
template <class L>
concept KernelLanes = WordLanes<L> && ByteLanes<L> && ConvertingLanes<L> && PairLanes<L> && TileLanes<L> && SumLanes<L>;

}  // namespace clarivex
