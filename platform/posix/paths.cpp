#include "platform/paths.h"

namespace clarivex {

std::filesystem::path PathOf(const std::string& text) { return text; }

std::string TextOf(const std::filesystem::path& path) { return path.string(); }

}  // namespace clarivex
