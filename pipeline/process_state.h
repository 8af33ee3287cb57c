// What all streams of a process have in common.
#pragma once

#include <cstdint>
#include <utility>

#include "overlay/caption_run.h"
#include "pipeline/noise_generator.h"
#include "runtime/fast_lock.h"

namespace clarivex {

/// The noise with its offsets, the caption's run, and that the first frame with lighting on adopts it at once. Used from any
/// thread: one lock guards what changes, and nothing waits under it.
class ProcessState {
public:
    /// Not changed after its making, so it is read without the lock.
    const NoiseGenerator& Noise() const { return noise; }

    /// The offsets of the next frame of any stream.
    NoiseOffsets AdvanceNoise() {
        const FastLockGuard guard(lock);
        return noise.Advance();
    }

    /// The caption's frame for the next frame of any stream, or captionHidden.
    int32_t AdvanceCaption() {
        const FastLockGuard guard(lock);
        return caption.Advance();
    }

    /// The caption begins anew with the next frame.
    void RestartCaption() {
        const FastLockGuard guard(lock);
        caption.Restart();
    }

    /// Whether the frames of every stream show the caption from the next one on; while they don't, it stands still.
    void ShowCaption(bool on) {
        const FastLockGuard guard(lock);
        caption.SetShown(on);
    }

    /// True once in the life of a process: for the first frame with lighting on.
    bool TakeAdoptAtOnce() {
        const FastLockGuard guard(lock);
        return std::exchange(adoptAtOnce, false);
    }

private:
    FastLock lock;
    NoiseGenerator noise;
    CaptionRun caption;
    bool adoptAtOnce = true;
};

}  // namespace clarivex
