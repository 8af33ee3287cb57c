// What the module carries inside itself beside code.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// A stream over a copy of the plug-in's icon, with one reference for the caller.
///
/// module  whose resource 203 of type "JPG" is read
/// result  E_POINTER for a null `stream` or memory that cannot be locked, 0x80070006 when the module has no such
///         resource or there is no memory for the copy, else what making the stream gave. `*stream` is null on failure.
HRESULT LoadIconStream(HMODULE module, IStream** stream);

}  // namespace clarivex
