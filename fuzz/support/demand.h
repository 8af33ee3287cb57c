// How a fuzz target says that something is wrong.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace clarivex {

/// Ends the program with a complaint; an empty one is none.
inline void Demand(const std::string& complaint) {
    if (complaint.empty()) return;
    std::fprintf(stderr, "%s\n", complaint.c_str());
    std::abort();
}

inline void Demand(bool good, const char* complaint) { Demand(good ? "" : complaint); }

}  // namespace clarivex
