// What the overlay asks of the system's fonts: outlines of single characters, at one fixed size.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace clarivex {

struct FontStyle {
    bool italic = false;
    bool bold = false;
};

/// A sans-serif font of cell height 256: what it keeps free above and below the baseline makes 256 pixels together.
/// Used by one thread at a time.
class Font {
public:
    /// Height of the font's cell in its pixels; an em of outline units.
    static constexpr int32_t cellHeight = 256;

    /// bytes    size of the outline's records, written or not; below 1 when the character has none
    /// advance  pixels to the next character
    struct Glyph {
        int64_t bytes = 0;
        int16_t advance = 0;
    };

    virtual ~Font() = default;

    /// Writes the outline of a character as TrueType contour records: per contour a header of 16 bytes (its size with
    /// the header, type 24, start point), then curves (type: 1 line, 2 quadratic spline; count of points; points).
    /// Numbers are little-endian, coordinates 16.16 fixed point pixels with the y axis up.
    ///
    /// Outer contours run clockwise; each is closed by a line to its start, where it does not end there.
    ///
    /// character  code; negative for bytes from 128 on, which may have no outline
    /// buffer     empty to ask for the size only; too small a one is left as it is
    /// throws     std::bad_alloc while memory is short
    virtual Glyph GlyphOutline(int32_t character, std::span<uint8_t> buffer) = 0;
};

class FontEngine {
public:
    virtual ~FontEngine() = default;

    /// The font in a style, or null when there is none. Throws std::bad_alloc while memory is short.
    virtual std::unique_ptr<Font> MakeFont(FontStyle style) = 0;
};

/// The fonts of this system; nothing is loaded before the first font is asked for.
std::unique_ptr<FontEngine> MakeSystemFontEngine();

}  // namespace clarivex
