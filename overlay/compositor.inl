// The passes behind Compose: sizes, updates from top to bottom, then painting from bottom to top.
#pragma once

#include <memory>
#include <utility>

#include "overlay/element.h"
#include "overlay/region.h"
#include "runtime/memory.h"

namespace clarivex {

/// What opaque elements above hide of an element: noted by the update pass, taken by the paint pass. Records form a stack,
/// which is empty and takes no memory as long as nothing is hidden.
template <class Target>
struct ClipRecord {
    const Element<Target>* element = nullptr;
    Region hidden;
    std::unique_ptr<ClipRecord> below;
};

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
    void NoteClip(const Element<Target>& element, const Region& newContent);

    void LimitDamage();
    void ReleaseTarget();
    void PrepareTarget();

    void PaintGroup(Group<Target>& group);
    void PaintElement(Element<Target>& element);
    Region TakeClip(const Element<Target>& element);

    Group<Target>& root;
    Target& target;
    const ComposeFrame& frame;
    const ComposeOptions& options;

    Region whole;                               // the target
    Region opaque;                              // of the elements updated so far, that is, above those to come
    Region content;                             // of the elements updated so far
    Region damage;                              // what has to be painted anew
    std::unique_ptr<ClipRecord<Target>> clips;  // the lowest element's first, in the order of painting
};

template <class Target>
Composition Compositor<Target>::Run(int32_t width, int32_t height, float aspect) {
    const bool resized = TakeSize(width, height);
    SizeGroup(root, width, height, aspect);
    UpdateGroup(root, true);
    content = RegionIntersect(content, whole);
    if (resized) damage = whole;
    LimitDamage();
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
    for (int32_t index = group.children.Count() - 1; index >= 0; --index) {
        Element<Target>& child = *group.children[index];
        UpdateElement(child, groupShown);
        if (child.removed) {
            group.children.RemoveAt(index);
            child.linked = false;
        }
    }
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
    NoteClip(element, newContent);
    opaque = RegionUnion(opaque, RegionIntersect(newContent, element.opaque));
    content = RegionUnion(content, newContent);
}

/// What the element changed, came to or left, as far as it can be seen.
template <class Target>
void Compositor<Target>::AddDamage(const Element<Target>& element, const Region& oldContent, const Region& newContent) {
    const Region repainted = RegionIntersect(element.changed, newContent);
    const Region differing = RegionUnion(repainted, RegionXor(oldContent, newContent));
    damage = RegionUnion(damage, RegionSubtract(differing, opaque));
}

template <class Target>
void Compositor<Target>::NoteClip(const Element<Target>& element, const Region& newContent) {
    Region hidden = RegionIntersect(opaque, newContent);
    if (hidden.IsEmpty()) return;
    auto record = WaitForMemory([] { return std::make_unique<ClipRecord<Target>>(); });
    record->element = &element;
    record->hidden = std::move(hidden);
    record->below = std::move(clips);
    clips = std::move(record);
}

template <class Target>
void Compositor<Target>::LimitDamage() {
    if (options.clip) damage = RegionIntersect(damage, *options.clip);
    if (options.extraDamage) damage = RegionUnion(damage, *options.extraDamage);
    damage = RegionIntersect(damage, whole);
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
    const Region cleared = RegionSubtract(damage, opaque);
    for (const Rectangle rectangle : RegionRects(cleared)) target.ClearRectangle(rectangle);
}

template <class Target>
void Compositor<Target>::PaintGroup(Group<Target>& group) {
    for (Element<Target>* child : group.children) PaintElement(*child);
}

/// Paints an element and then what stands in its group.
template <class Target>
void Compositor<Target>::PaintElement(Element<Target>& element) {
    const Region hidden = TakeClip(element);
    element.painted = element.shown;
    if (element.shown) {
        Region region = RegionSubtract(RegionIntersect(damage, element.content), hidden);
        element.AdjustPaintRegion(region);
        region = RegionIntersect(region, whole);
        if (!region.IsEmpty()) element.Paint(target, region, frame);
    }
    if (Group<Target>* inner = element.GetGroup()) PaintGroup(*inner);
}

/// What is hidden of the element. Without a record of its own it leaves the next element's where it is.
template <class Target>
Region Compositor<Target>::TakeClip(const Element<Target>& element) {
    if (!clips || clips->element != &element) return {};
    Region hidden = std::move(clips->hidden);
    clips = std::move(clips->below);
    return hidden;
}

template <class Target>
Composition Compose(Group<Target>& group, Target& target, int32_t width, int32_t height, float aspect,
                    const ComposeFrame& frame, const ComposeOptions& options) {
    return Compositor<Target>(group, target, frame, options).Run(width, height, aspect);
}

}  // namespace clarivex
