// Nearness is the number of letters that are wrong, missing, too many, or exchanged with their neighbour.
#include "host/suggestion.h"

#include <algorithm>
#include <vector>

namespace clarivex {

namespace {

size_t WrongLetters(std::string_view a, std::string_view b) {
    std::vector<size_t> beforeLast(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

std::string_view WithoutDashes(std::string_view word) {
    return word.substr(std::min(word.find_first_not_of('-'), word.size()));
}

}  // namespace

std::string Suggestion(std::string_view word, std::span<const std::string> names) {
    constexpr size_t mostLetters = 40;  // of a word that could be meant for a name
    constexpr size_t shortestStart = 3;
    const std::string_view bare = WithoutDashes(word);
    if (bare.size() > mostLetters) return "";
    const std::string* nearest = nullptr;
    size_t fewest = std::min<size_t>(2, bare.size() / 3) + 1;
    for (const std::string& name : names) {
        const std::string_view bareName = WithoutDashes(name);
        const bool begins = bare.size() >= shortestStart && bareName.starts_with(bare);
        const size_t wrong = begins ? 0 : WrongLetters(bare, bareName);
        if (wrong >= fewest) continue;
        fewest = wrong;
        nearest = &name;
    }
    return nearest ? " (did you mean " + *nearest + "?)" : "";
}

}  // namespace clarivex
