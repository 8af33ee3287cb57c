#include "platform/paths.h"

#include "platform/windows/wide_text.h"

namespace clarivex {

std::filesystem::path PathOf(const std::string& text) { return WideText(text); }

std::string TextOf(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    const int letters = static_cast<int>(wide.size());
    std::string text(
        static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, wide.data(), letters, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), letters, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
    return text;
}

}  // namespace clarivex
