// The info command: what this program and this machine can do.
#pragma once

#include <string>

namespace clarivex {

/// Version, processor features, instruction sets, measured speed and the largest picture that Auto enlarges, a line each.
/// Measures the speed, which takes about 200 ms.
std::string InfoText();

}  // namespace clarivex
