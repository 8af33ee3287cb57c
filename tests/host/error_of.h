// What an action complains about.
#pragma once

#include <stdexcept>
#include <string>

namespace clarivex {

/// The words of the UsageError or RunError that `action` ends with; "" when it ends well.
template <class Action>
std::string ErrorOf(Action action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

}  // namespace clarivex
