// The fonts of Windows, whose drawing functions give outlines as contour records.
#include "overlay/font_engine.h"

#include <type_traits>
#include <utility>

#include "platform/win32.h"

namespace clarivex {
namespace {

struct ContextDeleter {
    void operator()(HDC context) const { DeleteDC(context); }
};
using DeviceContext = std::unique_ptr<std::remove_pointer_t<HDC>, ContextDeleter>;

struct FontDeleter {
    void operator()(HFONT font) const { DeleteObject(font); }
};
using FontHandle = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

/// A font selected into a context of its own.
class GdiFont final : public Font {
public:
    GdiFont(DeviceContext ownContext, FontHandle ownFont)
        : context(std::move(ownContext)),
          font(std::move(ownFont)),
          previousFont(SelectObject(context.get(), font.get())) {}

    GdiFont(const GdiFont&) = delete;
    GdiFont& operator=(const GdiFont&) = delete;
    ~GdiFont() override { SelectObject(context.get(), previousFont); }

    Glyph GlyphOutline(int32_t character, std::span<uint8_t> buffer) override {
        const Glyph needed = Outline(character, {});
        const bool fits = needed.bytes > 0 && static_cast<uint64_t>(needed.bytes) <= buffer.size();
        return fits ? Outline(character, buffer) : needed;
    }

private:
    Glyph Outline(int32_t character, std::span<uint8_t> buffer) const {
        constexpr MAT2 identity = {.eM11 = {0, 1}, .eM12 = {}, .eM21 = {}, .eM22 = {0, 1}};
        GLYPHMETRICS metrics{};
        const DWORD bytes =
            GetGlyphOutlineA(context.get(), static_cast<UINT>(character), GGO_NATIVE, &metrics,
                             static_cast<DWORD>(buffer.size()), buffer.empty() ? nullptr : buffer.data(), &identity);
        return {.bytes = static_cast<int32_t>(bytes), .advance = metrics.gmCellIncX};  // GDI_ERROR is below 0
    }

    DeviceContext context;
    FontHandle font;
    HGDIOBJ previousFont;
};

class GdiFontEngine final : public FontEngine {
public:
    std::unique_ptr<Font> MakeFont(FontStyle style) override {
        DeviceContext context(CreateCompatibleDC(nullptr));
        FontHandle font(CreateFontA(Font::cellHeight, 0, 0, 0, style.bold ? FW_BOLD : FW_NORMAL, style.italic, FALSE,
                                    FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY,
                                    DEFAULT_PITCH | FF_DONTCARE, "Tahoma"));
        return context && font ? std::make_unique<GdiFont>(std::move(context), std::move(font)) : nullptr;
    }
};

}  // namespace

std::unique_ptr<FontEngine> MakeSystemFontEngine() { return std::make_unique<GdiFontEngine>(); }

}  // namespace clarivex
