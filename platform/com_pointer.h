// Owns one reference to a COM object.
#pragma once

#include <memory>

#include "platform/win32.h"

namespace clarivex {

struct ComReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

template <class Interface>
using ComPointer = std::unique_ptr<Interface, ComReleaser>;

/// A reference of one's own to an object that somebody else holds; null for null.
template <class Interface>
ComPointer<Interface> ReferenceTo(Interface* object) {
    if (object != nullptr) object->AddRef();
    return ComPointer<Interface>(object);
}

}  // namespace clarivex
