// The two ways in which the command line ends early.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace clarivex {

/// The command line asks for something that does not exist; exit code 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The run itself failed: a file, a stream, a picture size or the media object; exit code 1.
class RunError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A signal ended the run before its end; exit code 128 and the signal's number.
class Interruption : public RunError {
public:
    Interruption(int signalNumber, const std::string& what) : RunError(what), number(signalNumber) {}
    int Signal() const { return number; }

private:
    int number;
};

/// Text from a stranger, fit for one line on a terminal: at most 40 letters, unprintable ones as '?'; "(empty)"
/// where there is none.
std::string Printable(std::string_view text);

/// A path with its control characters as '?'; "(empty)" where there is none.
std::string PrintablePath(std::string_view path);

}  // namespace clarivex
