// How a caller of Compose can widen, narrow and guard what is repainted. The caption's callers do none of it.
#pragma once

#include <optional>

#include "overlay/region.h"
#include "runtime/fast_lock.h"

namespace clarivex {

/// Nothing of it by default.
struct ComposeLimits {
    const Region* extraDamage = nullptr;  ///< to be repainted too, also outside the clip
    const Region* clip = nullptr;         ///< limits what is repainted
    FastLock* lock = nullptr;             ///< held from the target's sizing to the end of painting

    /// The damage as the two regions change it.
    Region Apply(Region damage) const {
        if (clip != nullptr) damage = RegionIntersect(damage, *clip);
        if (extraDamage != nullptr) damage = RegionUnion(damage, *extraDamage);
        return damage;
    }

    /// Holds the lock, if there is one, for as long as the guard lives.
    class Guard {
    public:
        explicit Guard(const ComposeLimits& limits) {
            if (limits.lock != nullptr) guard.emplace(*limits.lock);
        }

    private:
        std::optional<FastLockGuard> guard;
    };
};

}  // namespace clarivex
