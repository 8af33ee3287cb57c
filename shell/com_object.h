// How this module's COM objects are counted, asked for interfaces and created: once for all classes. A class lists its
// interfaces and is written without a word about counting; the shapes below add it.
#pragma once

#include <atomic>
#include <cstdint>
#include <new>
#include <span>

#include "platform/com_pointer.h"
#include "platform/guids.h"
#include "platform/win32.h"
#include "shell/module.h"

namespace clarivex {

/// One interface of a class: its identifier and the way to it from the object.
template <class Object>
struct InterfaceEntry {
    GUID iid;
    IUnknown* (*pointerOf)(Object* object);
};

template <class Object, class Interface>
constexpr InterfaceEntry<Object> EntryFor(const GUID& iid) {
    return {iid, [](Object* object) -> IUnknown* { return static_cast<Interface*>(object); }};
}

/// Looks an interface up in `Object::Interfaces()` and adds a reference through it. IUnknown is the first row: that
/// pointer is the object's identity.
///
/// result  E_POINTER for a null `out`, E_NOINTERFACE with a null `*out` for what is not listed.
template <class Object>
HRESULT FindInterface(Object* object, REFIID iid, void** out) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    const bool identity = IsEqualGUID(iid, iidUnknown);
    for (const auto& entry : Object::Interfaces()) {
        if (identity || IsEqualGUID(iid, entry.iid)) {
            IUnknown* found = entry.pointerOf(object);
            found->AddRef();
            *out = found;
            return S_OK;
        }
    }
    return E_NOINTERFACE;
}

/// The references to an object; starts at 0, so the maker takes the first one. From any thread.
class ReferenceCount {
public:
    ULONG Add() { return static_cast<ULONG>(count.fetch_add(1) + 1); }

    /// Deletes the object with the last reference.
    template <class Object>
    ULONG Release(Object* object) {
        const int32_t left = count.fetch_sub(1) - 1;
        if (left == 0) delete object;
        return static_cast<ULONG>(left);
    }

private:
    std::atomic<int32_t> count = 0;
};

/// For objects that do not keep the module loaded.
struct NoLock {};

/// The shape that counts for itself. The lock is the first base: it is taken before the object's first line runs and given
/// back after its last.
template <class Object, class Lock = ModuleLock>
class PlainObject final : private Lock, public Object {
public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return FindInterface<Object>(this, iid, out);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return count.Add(); }
    ULONG STDMETHODCALLTYPE Release() override { return count.Release(this); }

    /// What the object's maker holds on to.
    IUnknown* Identity() { return Object::Interfaces().front().pointerOf(this); }

private:
    ReferenceCount count;
};

/// The shape that is part of another object: all its interfaces are counted and asked through the outer one, which is
/// not referenced. Only Identity(), the outer object's private handle, counts and answers for this object itself.
template <class Object>
class AggregatedObject final : private ModuleLock, public Object {
public:
    explicit AggregatedObject(IUnknown* outerObject) : outer(outerObject) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return outer->QueryInterface(iid, out);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return outer->AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return outer->Release(); }

    IUnknown* Identity() { return &inner; }

private:
    class InnerUnknown final : public IUnknown {
    public:
        explicit InnerUnknown(AggregatedObject* whole) : object(whole) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
            if (out == nullptr || !IsEqualGUID(iid, iidUnknown)) return FindInterface<Object>(object, iid, out);
            AddRef();
            *out = static_cast<IUnknown*>(this);
            return S_OK;
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return count.Add(); }
        ULONG STDMETHODCALLTYPE Release() override { return count.Release(object); }

    private:
        AggregatedObject* const object;
        ReferenceCount count;
    };

    IUnknown* const outer;
    InnerUnknown inner{this};
};

/// The last step of an object's making, for classes that have one: `HRESULT Complete()`. The object can be referenced
/// meanwhile; any result but S_OK is a failure.
template <class Object>
HRESULT CompleteObject(Object& object) {
    if constexpr (requires { object.Complete(); })
        return object.Complete();
    else
        return S_OK;
}

/// Completes a new object and gives its interface to its maker; on failure the object ends.
template <class Shape>
HRESULT HandOver(Shape* object, REFIID iid, void** out) {
    const ComPointer<IUnknown> identity = ReferenceTo(object->Identity());
    const HRESULT result = CompleteObject(*object);
    return result == S_OK ? identity->QueryInterface(iid, out) : result;
}

/// Makes an object in the shape that `outer` asks for.
///
/// result  E_OUTOFMEMORY, what completing the object gave, E_NOINTERFACE
template <class Object>
HRESULT CreateObject(IUnknown* outer, REFIID iid, void** out) {
    try {
        if (outer != nullptr) return HandOver(new AggregatedObject<Object>(outer), iid, out);
        return HandOver(new PlainObject<Object>, iid, out);
    } catch (...) {
        return E_OUTOFMEMORY;  // a constructor throws only what it says of memory
    }
}

}  // namespace clarivex
