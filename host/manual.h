// The manual page, from the tables of commands and options.
#pragma once

#include <string>

namespace clarivex {

/// clarivex(1) as a source for man: plain letters, a line feed at the end of each line.
std::string ManualPage();

}  // namespace clarivex
