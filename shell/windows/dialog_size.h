// How large a dialog will be before there is one.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// The inner size in pixels that a dialog template of the module gets in its font on this screen; 0 × 0 when there is no
/// such template, or it names no font.
SIZE DialogSizeInPixels(HMODULE module, int templateId);

}  // namespace clarivex
