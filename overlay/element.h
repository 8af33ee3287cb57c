// What stands in the scene: elements that paint into one kind of target, and groups of them.
#pragma once

#include <cstdint>

#include "overlay/growing_array.h"
#include "overlay/region.h"
#include "overlay/sleeping/scene_calls.h"

namespace clarivex {

struct KernelTable;
class MaskBitmap;
class OverlayTiles;
class YuvaImage;

/// What an element gets to know of the frame that is composed.
struct ComposeFrame {
    const KernelTable& kernels;  ///< for the pixel loops
};

template <class Target>
class Group;

/// Something that paints into a kind of target. It tells the compositor where it puts anything (content), where it hides
/// what lies below (opaque, inside content) and what its last update changed (changed); all in pixels of the target.
template <class Target>
class Element : public SceneCalls {
public:
    Element() = default;
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    virtual ~Element() = default;

    /// The elements that this one is made of and that paint into the same target, or null.
    virtual Group<Target>* GetGroup() { return nullptr; }

    /// Takes the target's size, in pixels at least 0; called in every composition before anything is updated. The regions
    /// stay as they are until the update.
    virtual void SetSize(int32_t width, int32_t height, float aspect) = 0;

    /// Brings the element and its three regions to the frame. Called only while it is shown. False promises that content
    /// and opaque are as they were; `changed` counts either way, so that it has to be emptied again.
    virtual bool Update(const ComposeFrame& frame) = 0;

    /// Widens a region that is about to be painted to what the element can paint. Nothing is cleared or painted anew
    /// for the pixels it adds; those outside the target are taken off again.
    virtual void AdjustPaintRegion(Region& /*region*/) {}

    /// Paints what stands inside the region, over what the target holds there.
    virtual void Paint(Target& /*target*/, const Region& /*region*/, const ComposeFrame& /*frame*/) {}

    void SetVisible(bool on) { visible = on; }

protected:
    Region content;
    Region opaque;
    Region changed;

private:
    template <class>
    friend class Group;
    template <class>
    friend class Compositor;
    template <class>
    friend class SceneUpkeep;

    bool visible = true;   // wants to be shown
    bool shown = false;    // it, and all above it, were visible in the last update
    bool painted = false;  // the target holds its last paint
    bool linked = false;   // stands in a group
};

/// Children of one target kind, first to last from bottom to top. Owns none of those that AddChild adds.
template <class Target>
class Group {
public:
    /// Adds an element above the others, not yet painted, nor anything in its own group. One that already stands in a
    /// group stays there. Not to be called from an element's Update.
    void AddChild(Element<Target>& element);

private:
    template <class>
    friend class Compositor;
    template <class>
    friend class SceneUpkeep;

    static void ForgetPaint(Element<Target>& element);
    void ForgetPaint();

    int32_t width = 0;  // of the target when the group was last composed; a group inside another has none of its own
    int32_t height = 0;
    GrowingArray<Element<Target>*> children;
    OwnedElements<Target> owned;
};

template <class Target>
void Group<Target>::AddChild(Element<Target>& element) {
    if (element.linked) return;
    ForgetPaint(element);
    children.Append(&element);
    element.linked = true;
    element.removed = false;
}

template <class Target>
void Group<Target>::ForgetPaint(Element<Target>& element) {
    element.painted = false;
    if (Group* group = element.GetGroup()) group->ForgetPaint();
}

template <class Target>
void Group<Target>::ForgetPaint() {
    for (Element<Target>* child : children) ForgetPaint(*child);
}

using TileElement = Element<OverlayTiles>;
using ImageElement = Element<YuvaImage>;
using MaskElement = Element<MaskBitmap>;
using TileGroup = Group<OverlayTiles>;
using ImageGroup = Group<YuvaImage>;
using MaskGroup = Group<MaskBitmap>;

}  // namespace clarivex
