// Reads size and font out of a dialog template, and measures the font as the system's dialogs do. Nothing here takes
// memory of C++'s, so nothing throws.
#include "shell/windows/dialog_size.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <type_traits>

namespace clarivex {
namespace {

struct TemplateFacts {
    SIZE units = {};  // dialog units
    int points = 0;
    wchar_t face[LF_FACESIZE] = {};  // cut short where a font's name may not be as long
};

/// Words of a template one after the other; behind the end there are zeros.
class TemplateReader {
public:
    explicit TemplateReader(std::span<const std::byte> bytes) : rest(bytes) {}

    template <class Value>
    Value Take() {
        Value value{};
        const size_t size = std::min(sizeof value, rest.size());
        std::memcpy(&value, rest.data(), size);
        rest = rest.subspan(size);
        return value;
    }

    /// What of a text has room in `kept`; the rest is passed over.
    void TakeText(std::span<wchar_t> kept = {}) {
        for (wchar_t letter = Take<wchar_t>(); letter != L'\0'; letter = Take<wchar_t>()) {
            if (!kept.empty()) {
                kept.front() = letter;
                kept = kept.subspan(1);
            }
        }
    }

    /// Menu and window class stand as a text or as a number behind a mark.
    void SkipTextOrNumber() {
        constexpr WORD numberMark = 0xFFFF;
        WORD first = 0;
        std::memcpy(&first, rest.data(), std::min(sizeof first, rest.size()));
        if (first == numberMark)
            Take<DWORD>();
        else
            TakeText();
    }

private:
    std::span<const std::byte> rest;
};

std::span<const std::byte> FindTemplate(HMODULE module, int templateId) {
    const HRSRC place = FindResourceA(module, MAKEINTRESOURCEA(templateId), reinterpret_cast<LPCSTR>(RT_DIALOG));
    const HGLOBAL loaded = place != nullptr ? LoadResource(module, place) : nullptr;
    const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return {};
    return {static_cast<const std::byte*>(bytes), SizeofResource(module, place)};
}

std::optional<TemplateFacts> ReadTemplate(std::span<const std::byte> bytes) {
    TemplateReader reader(bytes);
    const auto head = reader.Take<DLGTEMPLATE>();
    if ((head.style & DS_SETFONT) == 0) return std::nullopt;
    reader.SkipTextOrNumber();  // menu
    reader.SkipTextOrNumber();  // window class
    reader.TakeText();          // title
    TemplateFacts facts;
    facts.units = {head.cx, head.cy};
    facts.points = reader.Take<WORD>();
    reader.TakeText(std::span(facts.face).first<LF_FACESIZE - 1>());
    return facts;
}

struct ScreenReleaser {
    void operator()(HDC context) const { ReleaseDC(nullptr, context); }
};
using ScreenContext = std::unique_ptr<std::remove_pointer_t<HDC>, ScreenReleaser>;

struct FontDeleter {
    void operator()(HFONT font) const { DeleteObject(font); }
};
using OwnedFont = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

OwnedFont MakeFont(HDC context, const TemplateFacts& facts) {
    constexpr int pointsPerInch = 72;
    LOGFONTW font = {};
    font.lfHeight = -MulDiv(facts.points, GetDeviceCaps(context, LOGPIXELSY), pointsPerInch);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    std::ranges::copy(facts.face, font.lfFaceName);
    return OwnedFont(CreateFontIndirectW(&font));
}

/// Width of an average letter and height of a line, in pixels.
SIZE MeasureFont(HDC context, HFONT font) {
    constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int letters = sizeof alphabet - 1;
    const HGDIOBJ before = SelectObject(context, font);
    TEXTMETRICW metrics = {};
    SIZE extent = {};
    GetTextMetricsW(context, &metrics);
    GetTextExtentPoint32A(context, alphabet, letters, &extent);
    SelectObject(context, before);
    return {(extent.cx / (letters / 2) + 1) / 2, metrics.tmHeight};
}

}  // namespace

SIZE DialogSizeInPixels(HMODULE module, int templateId) {
    constexpr int unitsPerLetter = 4;
    constexpr int unitsPerLine = 8;
    const auto facts = ReadTemplate(FindTemplate(module, templateId));
    const ScreenContext screen(GetDC(nullptr));
    if (!facts || screen == nullptr) return {};
    const OwnedFont font = MakeFont(screen.get(), *facts);
    const SIZE base = MeasureFont(screen.get(), font.get());
    return {MulDiv(facts->units.cx, base.cx, unitsPerLetter), MulDiv(facts->units.cy, base.cy, unitsPerLine)};
}

}  // namespace clarivex
