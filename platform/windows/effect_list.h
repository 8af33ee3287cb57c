// The system's lists of media objects, one for each category, from which hosts choose.
#pragma once

#include "platform/win32.h"

#include <dmoreg.h>

namespace clarivex {

inline constexpr GUID videoEffectCategory{0xD990EE14, 0x776C, 0x4723, {0xBE, 0x46, 0x3D, 0xA2, 0xF5, 0x6F, 0x10, 0xB9}};

}  // namespace clarivex
