// The caption's way through its frames.
#pragma once

#include <algorithm>
#include <cstdint>

#include "overlay/caption_style.h"

namespace clarivex {

/// A frame of the caption where it is not shown.
constexpr int32_t captionHidden = 0;

/// Counts the frames that show the caption, from 1 to its end. Used by one thread at a time.
class CaptionRun {
public:
    /// The next frame is the caption's first.
    void Restart() { frame = 0; }

    /// Whether frames show the caption; while they don't, it stands still.
    void SetShown(bool on) { shown = on; }

    /// The next frame of the caption, 1 … captionEnd, or captionHidden.
    int32_t Advance() {
        if (!shown) return captionHidden;
        frame = std::min(frame + 1, captionEnd);
        return frame;
    }

private:
    int32_t frame = 0;
    bool shown = true;
};

}  // namespace clarivex
