// What an action complains about.
#pragma once

#include <gtest/gtest.h>

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

/// Looks for words in what an action complains about.
template <class Action>
void ExpectError(const std::string& words, Action action) {
    const std::string error = ErrorOf(action);
    EXPECT_NE(error.find(words), std::string::npos) << '"' << error << "\" instead of " << words;
}

}  // namespace clarivex
