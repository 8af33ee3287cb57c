// The passes behind Compose: sizes, updates from top to bottom, then painting from bottom to top.
#pragma once

#include <utility>

#include "overlay/element.h"
#include "overlay/region.h"
#include "overlay/sleeping/occlusion.h"

namespace clarivex {

/// One composition of a group; made for it and gone after it.
template <class Target>
class Compositor {
public:
    Compositor(Group<Target>& group, Target& target, const ComposeFrame& frame, const ComposeOptions& options)
        : root(group), target(target), frame(frame), options(options) {}

    Composition Run(int32_t width, int32_t height, float aspect);

private:
    [[nodiscard]] bool TakeSize(int32_t width, int32_t height);
    static void SizeGroup(Group<Target>& group, int32_t width, int32_t height, float aspect);

    void UpdateGroup(Group<Target>& group, bool groupShown);
    void UpdateElement(Element<Target>& element, bool groupShown);
    void AddDamage(const Element<Target>& element, const Region& oldContent, const Region& newContent);

    void LimitDamage();
    void ReleaseTarget();
    void PrepareTarget();

    void PaintGroup(Group<Target>& group);
    void PaintElement(Element<Target>& element);

    Group<Target>& root;
    Target& target;
    const ComposeFrame& frame;
    const ComposeOptions& options;

    Region whole;         // the target
    Region content;       // of the elements updated so far
    Region damage;        // what has to be painted anew
    Occlusion occlusion;  // by the elements updated so far, that is, above those to come
};

template <class Target>
Composition Compositor<Target>::Run(int32_t width, int32_t height, float aspect) {
    const bool resized = TakeSize(width, height);
    SizeGroup(root, width, height, aspect);
    UpdateGroup(root, true);
    content = RegionIntersect(content, whole);
    if (resized) damage = whole;
    LimitDamage();
    const ComposeLimits::Guard guard(options.limits);
    if (options.releaseWhenEmpty && content.IsEmpty()) {
        ReleaseTarget();
    } else if (!damage.IsEmpty()) {
        PrepareTarget();
        PaintGroup(root);
    }
    return {std::move(content), std::move(damage)};
}

/// Whether the size is another one than in the last composition.
template <class Target>
bool Compositor<Target>::TakeSize(int32_t width, int32_t height) {
    const bool resized = width != root.width || height != root.height;
    root.width = width;
    root.height = height;
    whole = Region::OfRectangle(0, 0, width, height);
    return resized;
}

template <class Target>
void Compositor<Target>::SizeGroup(Group<Target>& group, int32_t width, int32_t height, float aspect) {
    for (Element<Target>* child : group.children) {
        child->SetSize(width, height, aspect);
        if (Group<Target>* inner = child->GetGroup()) SizeGroup(*inner, width, height, aspect);
    }
}

template <class Target>
void Compositor<Target>::UpdateGroup(Group<Target>& group, bool groupShown) {
    for (int32_t index = group.children.Count() - 1; index >= 0; --index)
        UpdateElement(*group.children[index], groupShown);
    SceneUpkeep<Target>::TakeOutRemoved(group);
}

/// Updates an element with its group. What the group's elements cover lies above the element itself.
template <class Target>
void Compositor<Target>::UpdateElement(Element<Target>& element, bool groupShown) {
    const bool wasShown = element.shown;
    const Region oldContent = element.painted ? element.content : Region();
    element.shown = groupShown && element.visible && !element.removed;
    const bool updated = element.shown && element.Update(frame);
    if (Group<Target>* inner = element.GetGroup()) UpdateGroup(*inner, element.shown);

    const Region nothing;
    const Region& newContent = element.shown ? element.content : nothing;
    const bool stands = !updated && wasShown && element.shown && element.painted && element.changed.IsEmpty();
    if (!stands) AddDamage(element, oldContent, newContent);
    occlusion.Cover(&element, newContent, element.opaque);
    content = RegionUnion(content, newContent);
}

/// What the element changed, came to or left, as far as it can be seen.
template <class Target>
void Compositor<Target>::AddDamage(const Element<Target>& element, const Region& oldContent, const Region& newContent) {
    const Region repainted = RegionIntersect(element.changed, newContent);
    const Region differing = RegionUnion(repainted, RegionXor(oldContent, newContent));
    damage = RegionUnion(damage, RegionSubtract(differing, occlusion.Opaque()));
}

template <class Target>
void Compositor<Target>::LimitDamage() {
    damage = RegionIntersect(options.limits.Apply(std::move(damage)), whole);
}

/// Nobody's paint is left in a target without pixels, so whatever comes back is painted anew.
template <class Target>
void Compositor<Target>::ReleaseTarget() {
    target.Reallocate(0, 0);
    root.ForgetPaint();
}

/// Gives the target its size and clears what is to be painted, except under opaque elements. A target of another size
/// holds nothing yet: it is damaged, and cleared, as a whole.
template <class Target>
void Compositor<Target>::PrepareTarget() {
    if (target.AllocatedWidth() != root.width || target.AllocatedHeight() != root.height) {
        target.Reallocate(root.width, root.height);
        target.ClearRectangle({0, 0, root.width, root.height});
        damage = whole;
        LimitDamage();
        return;
    }
    const Region cleared = RegionSubtract(damage, occlusion.Opaque());
    for (const Rectangle rectangle : RegionRects(cleared)) target.ClearRectangle(rectangle);
}

template <class Target>
void Compositor<Target>::PaintGroup(Group<Target>& group) {
    for (Element<Target>* child : group.children) PaintElement(*child);
}

/// Paints an element and then what stands in its group.
template <class Target>
void Compositor<Target>::PaintElement(Element<Target>& element) {
    const Region hidden = occlusion.TakeHidden(&element);
    element.painted = element.shown;
    if (element.shown) {
        Region region = RegionSubtract(RegionIntersect(damage, element.content), hidden);
        element.AdjustPaintRegion(region);
        region = RegionIntersect(region, whole);
        if (!region.IsEmpty()) element.Paint(target, region, frame);
    }
    if (Group<Target>* inner = element.GetGroup()) PaintGroup(*inner);
}

template <class Target>
Composition Compose(Group<Target>& group, Target& target, int32_t width, int32_t height, float aspect,
                    const ComposeFrame& frame, const ComposeOptions& options) {
    return Compositor<Target>(group, target, frame, options).Run(width, height, aspect);
}

}  // namespace clarivex
