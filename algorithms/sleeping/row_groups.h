// Walks a row in place, group by group, so that a filter always sees unfiltered samples on both sides.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace clarivex {

/// Calls filter(samples, group, column) for `groups` groups of `size` samples, from left to right.
///
/// first   the first group; `column` counts from here.
/// left    the `before` samples that count as standing left of the first group.
/// right   the `after` samples that count as standing right of the last group; where they are in memory, a pointer to
///         them.
/// filter  gets unfiltered samples from samples[−before] to samples[size + after − 1] and writes group[0 … size − 1].
template <int32_t size, int32_t before, int32_t after, class Filter>
void FilterInGroups(uint8_t* first, int32_t groups, const std::array<uint8_t, before>& left, const uint8_t* right,
                    Filter filter) {
    std::array<uint8_t, before + size + after> window;
    std::copy(left.begin(), left.end(), window.begin());
    for (int32_t i = 0; i < groups; ++i) {
        uint8_t* group = first + i * size;
        std::copy_n(group, size, window.begin() + before);
        std::copy_n(i + 1 < groups ? group + size : right, after, window.begin() + before + size);
        filter(window.data() + before, group, i * size);
        std::copy_n(window.begin() + size, before, window.begin());
    }
}

/// `count` copies of one sample.
template <int32_t count>
std::array<uint8_t, count> Repeat(uint8_t sample) {
    std::array<uint8_t, count> samples;
    samples.fill(sample);
    return samples;
}

}  // namespace clarivex
