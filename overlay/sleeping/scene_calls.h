// What a scene can be asked beside being composed: elements that leave it, that it owns, and messages to all of them. The
// caption's elements are built once, stay, and are members of one another.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "overlay/growing_array.h"

namespace clarivex {

template <class Target>
class Element;
template <class Target>
class Group;

/// An element's side of it.
class SceneCalls {
public:
    /// Hides the element and has it taken out of its group by the next composition.
    void Remove() { removed = true; }

    /// Takes a message to the scene. An element with a group over another target hands it on to that group; the group
    /// that GetGroup gives has it already.
    virtual void Broadcast(intptr_t /*message*/) {}

protected:
    bool removed = false;
};

/// Elements that a group owns.
template <class Target>
class OwnedElements {
public:
    OwnedElements() = default;
    OwnedElements(const OwnedElements&) = delete;
    OwnedElements& operator=(const OwnedElements&) = delete;
    ~OwnedElements() {
        for (Element<Target>* element : elements) delete element;
    }

    void Add(std::unique_ptr<Element<Target>> element) {
        elements.Append(element.get());
        static_cast<void>(element.release());
    }

    /// Deletes the element if it is one of them.
    void Delete(Element<Target>* element) {
        for (int32_t index = 0; index < elements.Count(); ++index) {
            if (elements[index] != element) continue;
            elements.RemoveAt(index);
            delete element;
            return;
        }
    }

private:
    GrowingArray<Element<Target>*> elements;
};

/// A group's side of it. None of it may be called from an element's Update.
template <class Target>
class SceneUpkeep {
public:
    /// Group::AddChild for an element that the group owns from then on: it ends when it is taken out, or with the group.
    static void AddOwned(Group<Target>& group, std::unique_ptr<Element<Target>> element) {
        group.AddChild(*element);
        group.owned.Add(std::move(element));
    }

    /// Takes the elements out that asked for it; afterwards those of them that the group owns are deleted.
    static void TakeOutRemoved(Group<Target>& group) {
        GrowingArray<Element<Target>*> pending;
        for (int32_t index = group.children.Count() - 1; index >= 0; --index) {
            Element<Target>* child = group.children[index];
            if (!child->removed) continue;
            group.children.RemoveAt(index);
            child->linked = false;
            pending.Append(child);
        }
        for (Element<Target>* element : pending) group.owned.Delete(element);
    }

    /// Hands a message to all visible elements of a group, from top to bottom; to what stands in an element's group
    /// before the element itself.
    static void Broadcast(Group<Target>& group, intptr_t message) {
        for (int32_t index = group.children.Count() - 1; index >= 0; --index) {
            Element<Target>& child = *group.children[index];
            if (!child.visible) continue;
            if (Group<Target>* inner = child.GetGroup()) Broadcast(*inner, message);
            child.Broadcast(message);
        }
    }
};

}  // namespace clarivex
