// What completes the command line in a shell, from the tables of commands and options.
#pragma once

#include <string>

namespace clarivex {

/// A script for bash: commands, their options, the values that an option chooses from, files and folders.
std::string BashCompletion();

}  // namespace clarivex
