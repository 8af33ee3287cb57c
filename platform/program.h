// The running program, and another in its place. Not on Windows.
#pragma once

#include <string>
#include <vector>

namespace clarivex {

/// The folder of the running program's file, links followed; empty when the system does not tell.
std::string ProgramFolder();

/// Has another program take this process over, with its standard streams. Returns only when that fails, with the reason in
/// words for a person.
std::string BecomeProgram(const std::string& path, const std::vector<std::string>& arguments);

}  // namespace clarivex
