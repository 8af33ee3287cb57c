#include "overlay/rasteriser.h"

#include "tests/support/guarded_rows.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

// Outline units are 1/256 pixel.
constexpr OutlineTransform asItIs{.scaleX = 65536, .scaleY = 65536};

constexpr uint8_t guard = 0xA5;  // between the end of a row and the next one

std::unique_ptr<MaskBitmap> EmptyMask(int32_t width, int32_t height) {
    auto mask = std::make_unique<MaskBitmap>();
    mask->Reallocate(width, height);
    for (int32_t y = 0; y < height; ++y) std::fill_n(mask->Row(y), mask->Stride(), guard);
    mask->ClearRectangle({-5, -5, width + 5, height + 5});
    return mask;
}

/// Coverage of a mask of 8 by 3 pixels by a clockwise box, in 1/256 pixel: a digit for each, f where it is whole.
std::string Paint(const OutlineTransform& transform, const Rectangle& box) {
    const std::vector<OutlinePoint> points{
        {box.left, box.bottom}, {box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, ContourBreak};
    const auto mask = EmptyMask(8, 3);
    PaintOutline(transform, points, *mask, Region::OfRectangle(0, 0, 8, 3));
    std::string rows;
    for (int32_t i = 0; i < 24; ++i) rows += "0123456789abcdef"[mask->Row(i / 8)[i % 8] >> 4];
    return rows;
}

TEST(Rasteriser, PlacesOutlinesAndCutsThemOffAtTheMask) {
    constexpr OutlineTransform away{INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN};
    constexpr OutlineTransform placed{32768, 131072, 512, -256, -1, 1};  // x / 2 + 2 − 1 pixels, y · 2 − 1 + 1
    constexpr OutlineTransform huge{.scaleX = INT32_MAX, .scaleY = INT32_MAX};
    const std::string none(24, '0');
    EXPECT_EQ(Paint(asItIs, {-700, -700, 1024, 512}), "ffff0000ffff000000000000");
    EXPECT_EQ(Paint(placed, {1024, 128, 2048, 256}), "00000000000ff00000000000");
    for (const Rectangle& outside : {Rectangle{-700, 0, -100, 768}, {2048, 0, 4000, 768}, {0, 768, 2048, 4000}})
        EXPECT_EQ(Paint(asItIs, outside), none) << outside.left << ", " << outside.top;
    for (const OutlineTransform& transform : {asItIs, huge})
        EXPECT_EQ(Paint(transform, {INT32_MIN + 1, INT32_MIN + 1, INT32_MAX, INT32_MAX}), std::string(24, 'f'));
    EXPECT_EQ(Paint(away, {0, 0, INT32_MAX, INT32_MAX}), none);
}

// The arithmetic told cell by cell, with no cell left out.
class PlainRasteriser {
public:
    PlainRasteriser(MaskBitmap& mask, OutlinePoint from, OutlinePoint to)
        : mask(mask), x0(from.x), y0(from.y), x1(to.x), y1(to.y) {}

    void Run() {
        if (y0 == y1) return;
        int64_t r0 = y0 >> 8, r1 = (y1 - 1) >> 8;
        if (r0 > r1) std::swap(r0, r1);
        const bool goesDown = y0 < y1;
        const int64_t yt = goesDown ? y0 : y1, yb = goesDown ? y1 : y0;
        for (row = r0; row <= r1; ++row) {
            const int64_t ya = std::max(yt, row * 256), yb2 = std::min(yb, (row + 1) * 256);
            const int64_t xt = goesDown ? x0 : x1, xb = goesDown ? x1 : x0;
            RunRow(row == r0 ? xt : XAt(ya), ya - row * 256, row == r1 ? xb : XAt(yb2), yb2 - row * 256);
        }
    }

private:
    int64_t XAt(int64_t y) const { return x0 + (y - y0) * (x1 - x0) / (y1 - y0); }
    int64_t YAt(int64_t cell) const { return y0 + (cell * 256 - x0) * (y1 - y0) / (x1 - x0) - row * 256; }

    void RunRow(int64_t xa, int64_t ya, int64_t xb, int64_t yb) {
        const bool goesRight = xa < xb;
        int64_t cell = xa >> 8, in = xa & 255;
        for (; cell != xb >> 8; cell += goesRight ? 1 : -1) {
            const int64_t crossing = YAt(goesRight ? cell + 1 : cell);
            Piece(cell, ya, crossing, in, goesRight ? 256 : 0);
            ya = crossing;
            in = goesRight ? 0 : 256;
        }
        Piece(cell, ya, yb, in, xb & 255);
    }

    // The mean distance from the cell's right side is rounded down where the piece touches that side, up elsewhere.
    void Piece(int64_t cell, int64_t ya, int64_t yb, int64_t in, int64_t out) {
        const int64_t a = std::max(in, out) == 256 ? (512 - in - out) >> 1 : 256 - ((in + out) >> 1);
        const int64_t h = ((yb * 255) >> 8) - ((ya * 255) >> 8);
        const int64_t t = (a * h) >> 8;
        Add(std::max<int64_t>(cell, 0), cell < 0 ? h : t);
        if (cell >= 0) Add(cell + 1, h - t);
    }

    void Add(int64_t cell, int64_t term) {
        if (row < 0 || row >= mask.AllocatedHeight() || cell >= mask.AllocatedWidth()) return;
        uint8_t& pixel = mask.Row(static_cast<int32_t>(row))[cell];
        pixel = static_cast<uint8_t>(y0 < y1 ? pixel - term : pixel + term);
    }

    MaskBitmap& mask;
    int64_t x0, y0, x1, y1;
    int64_t row = 0;
};

// Lines near and far, steep and flat, many of them with ends on borders of pixels.
int32_t AnyCoordinate(std::mt19937& random, int32_t side) {
    const int32_t reach = random() % 4 == 0 ? 100 * 256 : side * 256;
    const int32_t coordinate = UpTo(random, 3 * reach) - reach;
    return random() % 4 == 0 ? coordinate & ~255 : coordinate;
}

TEST(Rasteriser, LinesEqualThePlainForm) {
    std::mt19937 random(20);
    for (int32_t run = 0; run < 4000; ++run) {
        const int32_t width = UpTo(random, 20), height = 1 + UpTo(random, 20);
        const auto actual = EmptyMask(width, height), expected = EmptyMask(width, height);
        const OutlinePoint from{AnyCoordinate(random, width), AnyCoordinate(random, height)};
        OutlinePoint to{AnyCoordinate(random, width), AnyCoordinate(random, height)};
        if (run % 8 == 0) to.x = from.x + UpTo(random, 6) - 3;  // truncation puts crossings into other rows
        RasteriseLine(asItIs, *actual, from, to);
        PlainRasteriser(*expected, from, to).Run();
        const int32_t bytes = actual->Stride() * height;  // none without columns, and then no memory
        ASSERT_TRUE(std::equal(actual->Row(0), actual->Row(0) + bytes, expected->Row(0)))
            << from.x << ", " << from.y << " to " << to.x << ", " << to.y << " in " << width << " by " << height;
    }
}

}  // namespace
}  // namespace clarivex
