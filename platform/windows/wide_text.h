// Text in the letters that Windows itself has. Include in Windows sources only.
#pragma once

#include <string>

#include "platform/win32.h"

namespace clarivex {

/// Text in the process's own code page as wide characters.
inline std::wstring WideText(const std::string& text) {
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

}  // namespace clarivex
