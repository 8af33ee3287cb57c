// Values of options, from the words of a command line.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "host/options.h"

namespace clarivex {

/// A number that takes up the whole word, without a sign in front that is not a minus. Nothing else is one.
template <class Number>
std::optional<Number> ParseNumber(std::string_view word) {
    Number number{};
    const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && stop == word.data() + word.size() ? std::optional(number) : std::nullopt;
}

/// A number from `low` to `high`; what is no number is not between them either.
template <class Number>
std::optional<Number> ParseBetween(std::string_view word, Number low, Number high) {
    const auto number = ParseNumber<Number>(word);
    return number && *number >= low && *number <= high ? number : std::nullopt;
}

/// Two numbers around a sign.
template <class Number>
std::optional<std::pair<Number, Number>> ParsePair(std::string_view word, char sign) {
    const size_t at = word.find(sign);
    if (at == std::string_view::npos) return std::nullopt;
    const auto first = ParseNumber<Number>(word.substr(0, at));
    const auto second = ParseNumber<Number>(word.substr(at + 1));
    return first && second ? std::optional(std::pair(*first, *second)) : std::nullopt;
}

constexpr int64_t microsecondsPerSecond = 1000000;
constexpr int64_t mostHours = 500;
constexpr int64_t longestTime = mostHours * 3600 * microsecondsPerSecond;

/// Microseconds, 0 … longestTime, from seconds ("90", "90.5"), minutes and seconds ("1:30") or hours, minutes and seconds
/// ("1:02:03.5"). Behind a larger unit a smaller one is below 60. Of a fraction six digits count.
std::optional<int64_t> ParseTime(std::string_view word);

/// "WIDTHxHEIGHT", each 1 … `largestSide`.
std::optional<PictureSize> ParseSize(std::string_view word, int32_t largestSide);

constexpr int32_t largestEnlargedSide = largestPictureSide * 3 / 2;

/// "WIDTHxHEIGHT+X+Y", which lies within largestEnlargedSide both ways.
std::optional<PictureCrop> ParseCrop(std::string_view word);

/// "NUMERATOR:DENOMINATOR", between 1:64 and 64:1.
std::optional<Ratio> ParseAspect(std::string_view word);

/// Whether these are an encoder's letters: plain letters, digits, '-', '_' and '.', at least one.
bool IsEncoderName(std::string_view word);

/// Whether this is "name=value:name=value", with no name and no value empty; a backslash before a colon keeps it in its value.
bool AreEncoderOptions(std::string_view word);

}  // namespace clarivex
