// Paths between the text of a command line and the standard library, which on Windows takes text for something else.
#pragma once

#include <filesystem>
#include <string>

namespace clarivex {

/// The path that text of a command line names, on Windows text in the process's code page.
std::filesystem::path PathOf(const std::string& text);

/// A path as text that fopen takes. On Windows letters that the process's code page lacks come as '?'.
std::string TextOf(const std::filesystem::path& path);

}  // namespace clarivex
