// Each form of a value is taken apart sign by sign; whatever is left over makes it no value.
#include "host/option_values.h"

#include <algorithm>
#include <vector>

namespace clarivex {

namespace {

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

bool IsNameLetter(char letter) {
    const char lower = static_cast<char>(letter | 0x20);
    return IsDigit(letter) || (lower >= 'a' && lower <= 'z') || letter == '-' || letter == '_' || letter == '.';
}

/// Digits alone, as a number that has room to be multiplied by 3600.
std::optional<int64_t> ParseDigits(std::string_view word) {
    constexpr size_t mostDigits = 12;
    if (word.empty() || word.size() > mostDigits || !std::ranges::all_of(word, IsDigit)) return std::nullopt;
    return ParseNumber<int64_t>(word);
}

/// The digits behind a decimal point as microseconds; those behind the sixth are dropped.
std::optional<int64_t> ParseFraction(std::string_view digits) {
    if (digits.empty() || !std::ranges::all_of(digits, IsDigit)) return std::nullopt;
    int64_t microseconds = 0;
    for (size_t place = 0; place < 6; ++place)
        microseconds = 10 * microseconds + (place < digits.size() ? digits[place] - '0' : 0);
    return microseconds;
}

/// Seconds from "H:M:S", "M:S" or "S".
std::optional<int64_t> ParseClock(std::string_view word) {
    int64_t seconds = 0;
    for (int unit = 0; unit < 3; ++unit) {
        const size_t colon = word.find(':');
        const auto part = ParseDigits(word.substr(0, colon));
        if (!part || (unit > 0 && *part >= 60)) return std::nullopt;
        seconds = 60 * seconds + *part;
        if (colon == std::string_view::npos) return seconds;
        word.remove_prefix(colon + 1);
    }
    return std::nullopt;  // a third colon
}

/// Where the value that begins `word` ends: at a colon without a backslash before it, or at the end.
size_t EndOfValue(std::string_view word) {
    for (size_t at = 0; at < word.size(); ++at) {
        if (word[at] == ':') return at;
        if (word[at] == '\\') ++at;
    }
    return word.size();
}

}  // namespace

std::optional<int64_t> ParseTime(std::string_view word) {
    const size_t point = word.find('.');
    const auto seconds = ParseClock(word.substr(0, point));
    const auto fraction = point == std::string_view::npos ? int64_t{0} : ParseFraction(word.substr(point + 1));
    if (!seconds || !fraction || *seconds > mostHours * 3600) return std::nullopt;
    const int64_t time = *seconds * microsecondsPerSecond + *fraction;
    return time <= longestTime ? std::optional(time) : std::nullopt;
}

std::optional<PictureSize> ParseSize(std::string_view word, int32_t largestSide) {
    const auto isSide = [=](int32_t side) { return side >= 1 && side <= largestSide; };
    const auto sides = ParsePair<int32_t>(word, 'x');
    if (!sides || !isSide(sides->first) || !isSide(sides->second)) return std::nullopt;
    return PictureSize{sides->first, sides->second};
}

std::optional<PictureCrop> ParseCrop(std::string_view word) {
    const size_t plus = word.find('+');
    if (plus == std::string_view::npos) return std::nullopt;
    const auto size = ParseSize(word.substr(0, plus), largestEnlargedSide);
    const auto corner = ParsePair<int32_t>(word.substr(plus + 1), '+');
    if (!size || !corner) return std::nullopt;
    const auto [x, y] = *corner;
    const bool inside =
        x >= 0 && y >= 0 && x <= largestEnlargedSide - size->width && y <= largestEnlargedSide - size->height;
    return inside ? std::optional(PictureCrop{*size, x, y}) : std::nullopt;
}

std::optional<Ratio> ParseAspect(std::string_view word) {
    const auto aspect = ParsePair<uint32_t>(word, ':');
    const auto isWithin = [](uint64_t larger, uint64_t smaller) { return smaller > 0 && larger <= 64 * smaller; };
    if (!aspect || !isWithin(aspect->first, aspect->second) || !isWithin(aspect->second, aspect->first))
        return std::nullopt;
    return Ratio{aspect->first, aspect->second};
}

bool IsEncoderName(std::string_view word) { return !word.empty() && std::ranges::all_of(word, IsNameLetter); }

bool AreEncoderOptions(std::string_view word) {
    while (true) {
        const size_t equals = word.find('=');
        if (equals == std::string_view::npos || !IsEncoderName(word.substr(0, equals))) return false;
        word.remove_prefix(equals + 1);
        const size_t end = EndOfValue(word);
        if (end == 0) return false;
        if (end == word.size()) return true;
        word.remove_prefix(end + 1);
    }
}

}  // namespace clarivex
