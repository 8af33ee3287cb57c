// Numbers and sizes as the command line writes them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "host/picture.h"

namespace clarivex {

inline std::string Fixed(double value, int digits) {
    char text[400];  // the largest number has 309 digits before the point
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

inline std::string Plural(const char* unit) { return std::string(" ") + unit + "s"; }

/// "1 frame", "2 frames".
inline std::string CountText(uint64_t count, const char* unit) {
    return std::to_string(count) + (count == 1 ? std::string(" ") + unit : Plural(unit));
}

/// "640x480".
inline std::string SizeText(PictureSize size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

}  // namespace clarivex
