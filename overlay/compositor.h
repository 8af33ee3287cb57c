// Composes a group of elements into its target: updates them, finds out what changed, and repaints just that.
#pragma once

#include "overlay/element.h"
#include "overlay/sleeping/compose_limits.h"

namespace clarivex {

/// How one composition differs from the plain one.
struct ComposeOptions {
    bool releaseWhenEmpty = false;  ///< give the target's memory back while no element has content
    ComposeLimits limits = {};
};

/// Both inside the target.
///
/// content  where any element puts something
/// damage   what was repainted, or would have been in a target that was released
struct Composition {
    Region content;
    Region damage;
};

/// Brings the group to the frame and its target with it. Elements are updated from top to bottom and painted from bottom
/// to top, each only where something changed and nothing opaque hides it. Another size repaints everything.
///
/// target         OverlayTiles, YuvaImage or MaskBitmap, or anything with their Reallocate, ClearRectangle,
///                AllocatedWidth and AllocatedHeight; given the size asked for before anything is painted into it. A
///                target of another size is cleared whole, even beyond where regions end
/// width, height  at least 0; regions end at coordinateLimit, and nothing is painted beyond
/// aspect         width of a pixel in relation to its height
template <class Target>
Composition Compose(Group<Target>& group, Target& target, int32_t width, int32_t height, float aspect,
                    const ComposeFrame& frame, const ComposeOptions& options = {});

}  // namespace clarivex

#include "overlay/compositor.inl"
