// A system handle that closes itself.
#pragma once

#include <memory>

#include "platform/win32.h"

namespace clarivex {

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

/// Owns a handle whose empty value is null, such as an event's.
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

}  // namespace clarivex
