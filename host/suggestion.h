// A guess at what was meant by a word that is not known.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace clarivex {

/// " (did you mean NAME?)" with the name nearest to `word`: one that begins with it, or that is a letter or two away from it,
/// a third of its letters at most; "" where none is near.
std::string Suggestion(std::string_view word, std::span<const std::string> names);

}  // namespace clarivex
