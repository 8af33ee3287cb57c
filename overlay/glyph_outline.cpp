#include "overlay/glyph_outline.h"

#include <cmath>
#include <cstring>
#include <span>

#include "runtime/memory.h"

namespace clarivex {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr int64_t largestOutline = 0x100000;  // bytes; from here on nothing is drawn

constexpr size_t headerBytes = 16;  // of a contour's record: its size, its type, the start point
constexpr uint32_t polygonType = 24;
constexpr size_t curveHeaderBytes = 4;  // type and count of points
constexpr size_t pointBytes = 8;
constexpr uint16_t lineCurve = 1;
constexpr uint16_t splineCurve = 2;

constexpr int32_t linesPerSpline = 4;

template <class Number>
Number Read(Bytes bytes, size_t position) {
    Number number;
    std::memcpy(&number, bytes.data() + position, sizeof(number));
    return number;
}

/// 16.16 fixed point pixels, y upward.
struct GlyphPoint {
    int32_t x;
    int32_t y;

    bool operator==(const GlyphPoint&) const = default;
};

GlyphPoint ReadPoint(Bytes points, size_t index) { return Read<GlyphPoint>(points, index * pointBytes); }

int32_t Middle(int32_t a, int32_t b) { return static_cast<int32_t>((static_cast<int64_t>(a) + b) >> 1); }

/// A coordinate of the quadratic spline from a through control b to c, at t from 0 to 1.
int64_t SplineAt(double t, int64_t a, int64_t b, int64_t c) {
    const double value =
        static_cast<double>(a) + t * t * static_cast<double>(a - 2 * b + c) + t * static_cast<double>(2 * (b - a));
    return std::llrint(static_cast<float>(value));
}

/// Draws contours into an outline, with the origin of the glyph at the pen. `current` is the end of what was drawn; it
/// is appended by what follows.
class ContourPen {
public:
    ContourPen(PointList& outline, int32_t penX, int32_t penY) : outline(outline), penX(penX), penY(penY) {}

    void Begin(GlyphPoint point) { start = current = point; }

    void LineTo(GlyphPoint point) {
        Emit(current.x, current.y);
        current = point;
    }

    void SplineTo(GlyphPoint control, GlyphPoint end) {
        for (int32_t k = 0; k < linesPerSpline; ++k) {
            const double t = k / static_cast<double>(linesPerSpline);
            Emit(SplineAt(t, current.x, control.x, end.x), SplineAt(t, current.y, control.y, end.y));
        }
        current = end;
    }

    void End() {
        if (current != start) Emit(current.x, current.y);
        outline.Append(ContourBreak);
    }

private:
    void Emit(int64_t x, int64_t y) { outline.Append({ToCoordinate((x >> 8) + penX), ToCoordinate(penY - (y >> 8))}); }

    PointList& outline;
    int32_t penX;
    int32_t penY;
    GlyphPoint start = {};
    GlyphPoint current = {};
};

/// Between two control points the curve passes through their middle; only the last point lies on it as it stands.
void DrawSplines(ContourPen& pen, Bytes points, size_t count) {
    for (size_t i = 0; i + 1 < count; ++i) {
        const GlyphPoint control = ReadPoint(points, i);
        const GlyphPoint next = ReadPoint(points, i + 1);
        const bool isLast = i + 2 == count;
        pen.SplineTo(control, isLast ? next : GlyphPoint{Middle(control.x, next.x), Middle(control.y, next.y)});
    }
}

void DrawCurve(ContourPen& pen, uint16_t type, Bytes points, size_t count) {
    if (type == lineCurve)
        for (size_t i = 0; i < count; ++i) pen.LineTo(ReadPoint(points, i));
    else if (type == splineCurve)
        DrawSplines(pen, points, count);
}

/// False when a curve reaches beyond the end.
bool DrawCurves(ContourPen& pen, Bytes curves) {
    while (!curves.empty()) {
        if (curves.size() < curveHeaderBytes) return false;
        const auto type = Read<uint16_t>(curves, 0);
        const auto count = Read<uint16_t>(curves, 2);
        curves = curves.subspan(curveHeaderBytes);
        if (curves.size() < count * pointBytes) return false;
        DrawCurve(pen, type, curves, count);
        curves = curves.subspan(count * pointBytes);
    }
    return true;
}

/// One record, a contour. False when a curve reaches beyond it.
bool DrawContour(ContourPen& pen, Bytes record) {
    pen.Begin(Read<GlyphPoint>(record, 8));
    const bool isPolygon = Read<uint32_t>(record, 4) == polygonType;
    const bool isWhole = !isPolygon || DrawCurves(pen, record.subspan(headerBytes));
    pen.End();
    return isWhole;
}

void DrawGlyph(ContourPen pen, Bytes records) {
    while (records.size() >= headerBytes) {
        const auto recordBytes = Read<uint32_t>(records, 0);
        if (recordBytes < headerBytes || recordBytes > records.size()) return;
        if (!DrawContour(pen, records.first(recordBytes))) return;
        records = records.subspan(recordBytes);
    }
}

}  // namespace

int32_t AppendGlyph(PointList& outline, Font& font, int8_t character, int32_t& penX, int32_t& penY) {
    if (character == '\r') return 0;
    if (character == '\n') {
        penX = 0;
        penY = ToCoordinate(static_cast<int64_t>(penY) + emUnits);
        return 0;
    }
    constexpr int32_t unitsPerPixel = emUnits / Font::cellHeight;
    const auto ask = [&](std::span<uint8_t> buffer) {
        return WaitForMemory([&] { return font.GlyphOutline(character, buffer); });
    };
    const Font::Glyph needed = ask({});
    if (needed.bytes < 1 || needed.bytes >= largestOutline) return needed.advance * unitsPerPixel;
    const auto size = static_cast<size_t>(needed.bytes);
    const SampleBlock buffer = MakeAlignedArray<uint8_t>(size);
    const Font::Glyph glyph = ask({buffer.get(), size});
    const bool isWritten = glyph.bytes >= 1 && glyph.bytes <= needed.bytes;
    if (isWritten) DrawGlyph({outline, penX, penY}, {buffer.get(), static_cast<size_t>(glyph.bytes)});
    return glyph.advance * unitsPerPixel;
}

}  // namespace clarivex
