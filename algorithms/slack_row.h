// A row of working memory with the slack that kernels take on both sides.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "runtime/memory.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// Grows when asked for more, never shrinks; contents are lost when it grows. Elements are plain words or samples.
template <class Element>
class SlackRow {
public:
    /// First of `length` elements with slackBefore in front and slackBehind behind them, all readable and writable.
    Element* Prepare(int32_t length) {
        if (length > capacity) {
            const size_t count = static_cast<size_t>(slackBefore) + static_cast<size_t>(length) + slackBehind;
            block = MakeAlignedArray<Element>(count);
            std::fill_n(block.get(), count, Element{});
            capacity = length;
        }
        return block.get() + slackBefore;
    }

private:
    AlignedArray<Element> block;
    int32_t capacity = 0;
};

}  // namespace clarivex
