// What the registration of a module's classes is made of.
#pragma once

#include <memory>

#include "platform/com_pointer.h"
#include "platform/win32.h"

namespace clarivex {

/// Enters each class of the object map in the registry and stops at the first failure, which is the result. What was entered
/// until then stays. COM must be initialised on the thread.
HRESULT EnterClasses();

/// Takes out all of them, as far as there is any.
void RemoveClasses();

struct TextFreer {
    void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using OwnedText = std::unique_ptr<OLECHAR, TextFreer>;

/// A text of the module's string table; null when there is none.
OwnedText LoadText(UINT id);

/// An object of a class that this process loads. E_NOINTERFACE for a success without an object.
template <class Interface>
HRESULT CreateInProcess(REFCLSID classId, REFIID iid, ComPointer<Interface>& object) {
    void* created = nullptr;
    const HRESULT result = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iid, &created);
    object.reset(SUCCEEDED(result) ? static_cast<Interface*>(created) : nullptr);
    return SUCCEEDED(result) && created == nullptr ? E_NOINTERFACE : result;
}

}  // namespace clarivex
