// Names of streams for messages, and errors that carry them.
#pragma once

#include <string>

#include "host/errors.h"

namespace clarivex {

/// What a message calls the stream that a path stands for; fit for a terminal.
inline std::string InputName(const std::string& path) { return path == "-" ? "standard input" : PrintablePath(path); }
inline std::string OutputName(const std::string& path) { return path == "-" ? "standard output" : PrintablePath(path); }

/// Runs `action` and puts the name in front of its RunErrors.
template <class Action>
auto Naming(const std::string& name, Action action) {
    try {
        return action();
    } catch (const RunError& error) {
        throw RunError(name + ": " + error.what());
    }
}

}  // namespace clarivex
