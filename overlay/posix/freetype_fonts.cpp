// The fonts of a POSIX system: fontconfig says which files come nearest to a style, FreeType reads their outlines.
#include "overlay/font_engine.h"

#include <fontconfig/fontconfig.h>
#include <freetype/freetype.h>
#include <freetype/ftoutln.h>
#include <freetype/tttables.h>

#include <algorithm>
#include <exception>
#include <initializer_list>
#include <new>
#include <utility>

#include "overlay/growing_array.h"
#include "runtime/fast_lock.h"

namespace clarivex {
namespace {

template <auto release>
struct Releaser {
    template <class Object>
    void operator()(Object* object) const {
        release(object);
    }
};
using Config = std::unique_ptr<FcConfig, Releaser<FcConfigDestroy>>;
using Pattern = std::unique_ptr<FcPattern, Releaser<FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Releaser<FcFontSetDestroy>>;
using Library = std::unique_ptr<FT_LibraryRec_, Releaser<FT_Done_FreeType>>;
using Face = std::unique_ptr<FT_FaceRec_, Releaser<FT_Done_Face>>;

/// To the nearest integer; divisor above 0.
int64_t RoundedQuotient(int64_t dividend, int64_t divisor) {
    const int64_t half = dividend < 0 ? -(divisor / 2) : divisor / 2;
    return (dividend + half) / divisor;
}

/// Whether FreeType did what it was asked for. Throws std::bad_alloc where it was short of memory.
bool Succeeds(FT_Error error) {
    if (FT_ERROR_BASE(error) == FT_Err_Out_Of_Memory) throw std::bad_alloc();
    return error == FT_Err_Ok;
}

// ---- Outlines ----

/// TrueType contour records of an outline, a curve record for every line and spline in it. A cubic piece becomes the two
/// splines that have its tangents at both ends and its point in the middle.
class ContourRecords {
public:
    /// outline  16.16 coordinates, y upward; one that is broken gives no records
    explicit ContourRecords(FT_Outline& outline) {
        constexpr FT_Outline_Funcs pieces = {
            .move_to = OnStart, .line_to = OnLine, .conic_to = OnSpline, .cubic_to = OnCubic, .shift = 0, .delta = 0};
        const bool whole = FT_Outline_Decompose(&outline, &pieces, this) == 0;
        if (failure) std::rethrow_exception(failure);
        if (!whole) bytes.Clear();
    }

    std::span<const uint8_t> Bytes() const { return bytes.Elements(); }

private:
    static constexpr uint32_t polygonType = 24;
    static constexpr uint32_t lineType = 1;
    static constexpr uint32_t splineType = 2;
    static constexpr int goOn = 0;  // what FreeType wants to hear
    static constexpr int stop = 1;

    static ContourRecords& Of(void* records) { return *static_cast<ContourRecords*>(records); }

    static int OnStart(const FT_Vector* start, void* records) { return Of(records).BeginContour(*start); }
    static int OnLine(const FT_Vector* to, void* records) { return Of(records).AddCurve(lineType, {*to}); }
    static int OnSpline(const FT_Vector* control, const FT_Vector* to, void* records) {
        return Of(records).AddCurve(splineType, {*control, *to});
    }
    static int OnCubic(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* records) {
        const auto nearer = [](FT_Vector end, FT_Vector control) {
            return FT_Vector{(end.x + 3 * control.x) / 4, (end.y + 3 * control.y) / 4};
        };
        const FT_Vector from = Of(records).current;
        return Of(records).AddCurve(splineType, {nearer(from, *control1), nearer(*to, *control2), *to});
    }

    int BeginContour(FT_Vector start) {
        return Guarded([&] {
            contour = bytes.Count();
            Append(0, 4);
            Append(polygonType, 4);
            AppendPoint(start);
            StoreContourSize();
        });
    }

    int AddCurve(uint32_t type, std::initializer_list<FT_Vector> points) {
        return Guarded([&] {
            Append(type, 2);
            Append(static_cast<uint32_t>(points.size()), 2);
            for (const FT_Vector& point : points) AppendPoint(point);
            StoreContourSize();
        });
    }

    /// FreeType's C stands between its callbacks and whoever could catch: what an action throws is kept for later.
    template <class Action>
    int Guarded(Action action) noexcept {
        try {
            action();
            return goOn;
        } catch (...) {
            failure = std::current_exception();
            return stop;
        }
    }

    void AppendPoint(FT_Vector point) {
        Append(static_cast<uint32_t>(point.x), 4);
        Append(static_cast<uint32_t>(point.y), 4);
        current = point;
    }

    void Append(uint32_t number, int count) {
        for (int i = 0; i < count; ++i) bytes.Append(static_cast<uint8_t>(number >> 8 * i));
    }

    void StoreContourSize() {
        const int32_t size = bytes.Count() - contour;
        for (int32_t i = 0; i < 4; ++i) bytes[contour + i] = static_cast<uint8_t>(size >> 8 * i);
    }

    GrowingArray<uint8_t> bytes;
    std::exception_ptr failure;
    int32_t contour = 0;  // where the contour's header begins
    FT_Vector current{};  // the point added last
};

/// Makes every contour run the other way round from the same start: FreeType's own reversal starts at the point that was
/// last, and a contour must not start at a cubic's control point.
void ReverseContours(FT_Outline& outline) {
    int start = 0;
    for (const auto end : std::span(outline.contours, static_cast<size_t>(outline.n_contours))) {
        if (start <= end) {
            std::reverse(outline.points + start + 1, outline.points + end + 1);
            std::reverse(outline.tags + start + 1, outline.tags + end + 1);
        }
        start = end + 1;
    }
}

/// Height of a face's cell in its own units: what an ordinary text needs above and below the baseline.
int32_t CellUnits(FT_Face face) {
    const auto* metrics = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    const int32_t height = metrics != nullptr ? metrics->usWinAscent + metrics->usWinDescent : 0;
    return height > 0 ? height : face->ascender - face->descender;
}

class FreeTypeFont final : public Font {
public:
    /// The face has outlines, Latin letters and a cell.
    FreeTypeFont(Library ownLibrary, Face ownFace)
        : library(std::move(ownLibrary)), face(std::move(ownFace)), cellUnits(CellUnits(face.get())) {}

    Glyph GlyphOutline(int32_t character, std::span<uint8_t> buffer) override {
        if (character < 0 || character > 127)
            return {};  // which letters they are depends on a code page, and there is none
        const FT_UInt glyph = FT_Get_Char_Index(face.get(), static_cast<FT_ULong>(character));
        FT_GlyphSlot slot = face->glyph;
        if (!Succeeds(FT_Load_Glyph(face.get(), glyph, FT_LOAD_NO_SCALE)) || slot->format != FT_GLYPH_FORMAT_OUTLINE)
            return {};
        ToFixedPoint(slot->outline);
        const ContourRecords records(slot->outline);
        if (records.Bytes().size() <= buffer.size())
            std::copy(records.Bytes().begin(), records.Bytes().end(), buffer.begin());
        return {.bytes = static_cast<int64_t>(records.Bytes().size()), .advance = Advance(slot->metrics.horiAdvance)};
    }

private:
    /// Turns outer contours clockwise and makes 16.16 pixels of the face's units.
    void ToFixedPoint(FT_Outline& outline) const {
        if (FT_Outline_Get_Orientation(&outline) == FT_ORIENTATION_POSTSCRIPT) ReverseContours(outline);
        for (FT_Vector& point : std::span(outline.points, static_cast<size_t>(outline.n_points)))
            point = {FixedPoint(point.x), FixedPoint(point.y)};
    }

    FT_Pos FixedPoint(FT_Pos units) const {
        // Sixteen cells: no letter gets there, and what a broken font says can still be added and subtracted.
        constexpr int64_t furthest = int64_t{16 * cellHeight} << 16;
        const int64_t pixels = RoundedQuotient(int64_t{units} * (cellHeight << 16), cellUnits);
        return static_cast<FT_Pos>(std::clamp(pixels, -furthest, furthest));
    }

    int16_t Advance(FT_Pos units) const {
        return static_cast<int16_t>(
            std::clamp<int64_t>(RoundedQuotient(int64_t{units} * cellHeight, cellUnits), 0, INT16_MAX));
    }

    Library library;  // outlives the face
    Face face;
    int32_t cellUnits;
};

// ---- Finding a font ----

/// What fontconfig makes of memory alone is null only while memory is short.
template <class Object>
Object* Allocated(Object* object) {
    if (object == nullptr) throw std::bad_alloc();
    return object;
}

/// The system's configuration and list of fonts; null when they cannot be read. Stays silent when there is none.
Config LoadConfig() {
    Config config(Allocated(FcConfigCreate()));
    const bool loaded = FcConfigParseAndLoad(config.get(), nullptr, FcFalse) && FcConfigBuildFonts(config.get());
    return loaded ? std::move(config) : nullptr;
}

Pattern WantedFont(FontStyle style) {
    Pattern pattern(Allocated(FcPatternCreate()));
    for (const char* family : {"Tahoma", "sans-serif"})
        FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, style.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, style.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);  // its named instances are fonts of their own
    return pattern;
}

/// All fonts of the system, the nearest to the style first; null when that fails.
FontSet FontsByLikeness(FontStyle style) {
    const Config config = LoadConfig();
    const Pattern pattern = WantedFont(style);
    if (!config || !FcConfigSubstitute(config.get(), pattern.get(), FcMatchPattern)) return nullptr;
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultMatch;
    return FontSet(FcFontSort(config.get(), pattern.get(), FcFalse, nullptr, &result));
}

/// The face that a font names; null when its file cannot be read or has no outlines of Latin letters.
Face OpenFace(FT_Library library, FcPattern* font) {
    FcChar8* file = nullptr;
    int index = 0;
    FT_Face opened = nullptr;
    if (FcPatternGetString(font, FC_FILE, 0, &file) != FcResultMatch ||
        FcPatternGetInteger(font, FC_INDEX, 0, &index) != FcResultMatch ||
        !Succeeds(FT_New_Face(library, reinterpret_cast<const char*>(file), index, &opened)))
        return nullptr;
    Face face(opened);
    const bool usable = FT_IS_SCALABLE(opened) && FT_Get_Char_Index(opened, 'a') != 0 && CellUnits(opened) > 0;
    return usable ? std::move(face) : nullptr;
}

Library OpenLibrary() {
    FT_Library opened = nullptr;
    return Library(Succeeds(FT_Init_FreeType(&opened)) ? opened : nullptr);
}

/// Fontconfig keeps caches of its own for the whole process: one thread at a time looks for fonts.
FastLock& FontSearchLock() {
    static FastLock lock;
    return lock;
}

class FreeTypeFontEngine final : public FontEngine {
public:
    std::unique_ptr<Font> MakeFont(FontStyle style) override {
        const FastLockGuard guard(FontSearchLock());
        Library library = OpenLibrary();
        const FontSet fonts = FontsByLikeness(style);
        if (!library || !fonts) return nullptr;
        for (FcPattern* font : std::span(fonts->fonts, static_cast<size_t>(fonts->nfont)))
            if (Face face = OpenFace(library.get(), font))
                return std::make_unique<FreeTypeFont>(std::move(library), std::move(face));
        return nullptr;
    }
};

}  // namespace

std::unique_ptr<FontEngine> MakeSystemFontEngine() { return std::make_unique<FreeTypeFontEngine>(); }

}  // namespace clarivex
