// How playing ends early.
#pragma once

#include <stdexcept>

namespace clarivex {

/// Nothing can be played, or no further; what() tells why in a line.
class PlayError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace clarivex
