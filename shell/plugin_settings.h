// The user's settings as one media object keeps them, with the values they have until somebody changes them.
#pragma once

#include <atomic>
#include <bit>
#include <cstdint>

namespace clarivex {

/// When a stream is enlarged; every other number counts as automatic.
constexpr uint32_t modeNever = 0;
constexpr uint32_t modeAuto = 1;
constexpr uint32_t modeAlways = 2;

/// Written by the user interface's thread while frames are made: each field is old or new, never torn, and no field
/// waits for another.
class PluginSettings {
public:
    /// Tells the next frame of a value with other bits than the present one.
    void SetSharpness(float value) {
        const float old = sharpness.exchange(value, std::memory_order_relaxed);
        if (std::bit_cast<uint32_t>(old) != std::bit_cast<uint32_t>(value))
            sharpnessChanged.store(true, std::memory_order_release);
    }
    float Sharpness() const { return sharpness.load(std::memory_order_relaxed); }

    /// Whether the sharpness changed since the last call, true at first. Ask before reading the sharpness: a change in
    /// between is then told again instead of being lost.
    bool TakeSharpnessChange() { return sharpnessChanged.exchange(false, std::memory_order_acquire); }

    std::atomic<uint32_t> mode = modeAuto;
    std::atomic<bool> allowHd = false;
    std::atomic<bool> enableLighting = true;
    std::atomic<bool> liftSizeLimits = false;  ///< enhance and enlarge pictures of every size
    std::atomic<double> scaleFactor = 0.0;
    std::atomic<int32_t> enabled = 1;  ///< the player's switch; 0 copies frames as they are

private:
    std::atomic<float> sharpness = 1.0F;
    std::atomic<bool> sharpnessChanged = true;
};

}  // namespace clarivex
