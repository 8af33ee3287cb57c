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

}  // namespace clarivex
