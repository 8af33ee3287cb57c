#include "overlay/region.h"

#include <bitset>

#include "overlay/sleeping/region_add_rect.h"
#include "tests/support/guarded_rows.h"
#include "tests/support/memory_count.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr int32_t side = 40;
using Bitmap = std::bitset<static_cast<size_t>(side) * side>;

size_t PixelAt(int32_t x, int32_t y) { return static_cast<size_t>(y * side + x); }

void Fill(Bitmap& bitmap, const Rectangle& rectangle) {
    for (int32_t y = rectangle.top; y < rectangle.bottom; ++y)
        for (int32_t x = rectangle.left; x < rectangle.right; ++x) bitmap.set(PixelAt(x, y));
}

// The entries that a set of pixels must have, row by row from the pixels.
std::vector<RegionEntry> EntriesOf(const Bitmap& bitmap) {
    std::vector<RegionEntry> entries, previous;
    size_t header = 0;
    for (int16_t y = 0; y < side; ++y) {
        std::vector<RegionEntry> spans;
        for (int16_t x = 0; x < side; ++x) {
            if (!bitmap[PixelAt(x, y)]) continue;
            if (x == 0 || !bitmap[PixelAt(x - 1, y)]) spans.push_back({x, x});
            spans.back().to = static_cast<int16_t>(x + 1);
        }
        if (!spans.empty() && spans == previous) {
            ++entries[header].to;
        } else if (!spans.empty()) {
            header = entries.size();
            entries.push_back({y, static_cast<int16_t>(y + 1)});
            entries.insert(entries.end(), spans.begin(), spans.end());
            entries.push_back(regionSentinel);
        }
        previous = spans;
    }
    if (!entries.empty()) entries.push_back(regionSentinel);
    return entries;
}

[[nodiscard]] bool Holds(const Region& region, const Bitmap& bitmap) {
    return std::ranges::equal(region.Entries(), EntriesOf(bitmap));
}

struct Sample {
    void Add(const Rectangle& rectangle) {
        RegionAddRect(region, rectangle);
        Fill(bitmap, rectangle);
    }

    Region region;
    Bitmap bitmap;
};

Sample RandomSample(std::mt19937& random) {
    const int32_t largest = std::array{2, 8, side}[random() % 3];
    Sample sample;
    for (int32_t rectangles = UpTo(random, largest == 2 ? 300 : 7); rectangles > 0; --rectangles) {
        const int32_t x = UpTo(random, side - 1), y = UpTo(random, side - 1);
        sample.Add({x, y, std::min(side, x + 1 + UpTo(random, largest - 1)),
                    std::min(side, y + 1 + UpTo(random, largest - 1))});
    }
    return sample;
}

void ExpectHelpersAgree(const Sample& sample) {
    Bitmap widened;
    Rectangle around = sample.region.IsEmpty() ? Rectangle() : Rectangle{side, side, 0, 0};
    for (const Rectangle part : RegionRects(sample.region)) {
        Fill(widened, {part.left / 8 * 8, part.top, (part.right + 7) / 8 * 8, part.bottom});
        around = {std::min(around.left, part.left), std::min(around.top, part.top), std::max(around.right, part.right),
                  std::max(around.bottom, part.bottom)};
    }
    EXPECT_EQ(RegionBounds(sample.region), around);
    Region snapped = sample.region;
    RegionSnapX8(snapped);
    EXPECT_TRUE(Holds(snapped, widened));
}

TEST(Region, OperationsEqualThoseOnPixels) {
    std::mt19937 random(1);
    for (int32_t round = 0; round < 1500; ++round) {
        const Sample a = RandomSample(random), b = RandomSample(random);
        SCOPED_TRACE(round);
        ASSERT_TRUE(Holds(a.region, a.bitmap));
        ASSERT_TRUE(Holds(RegionUnion(a.region, b.region), a.bitmap | b.bitmap));
        ASSERT_TRUE(Holds(RegionIntersect(a.region, b.region), a.bitmap & b.bitmap));
        ASSERT_TRUE(Holds(RegionXor(a.region, b.region), a.bitmap ^ b.bitmap));
        ASSERT_TRUE(Holds(RegionSubtract(a.region, b.region), a.bitmap & ~b.bitmap));
        ExpectHelpersAgree(a);
    }
}

// Narrow columns, and squares between them in every other row: far more entries than the two regions' own.
TEST(Region, HoldsMoreThanWasExpectedOfTheSources) {
    Region a, b;
    for (int32_t x = 0; x < 200; ++x) RegionAddRect(a, {4 * x, 0, 4 * x + 2, 121});
    for (int32_t y = 0; y < 60; ++y) RegionAddRect(b, {4 * y + 2, 2 * y + 1, 4 * y + 3, 2 * y + 2});
    const Region both = RegionUnion(a, b);
    EXPECT_EQ(both.Entries().size(), size_t{202 * 121 + 1});
    EXPECT_EQ(RegionXor(both, a), b);
}

TEST(Region, RectanglesNeedNoMemoryAndEveryCopyIsWhole) {
    const MemoryCount memory;
    Region region = Region::OfRectangle(10, 10, 20, 20);
    RegionAddRect(region, {10, 30, 30, 40});
    region = RegionSubtract(region, Region::OfRectangle(0, 0, 100, 25));
    RegionTranslate(region, 3, 4);
    EXPECT_EQ(RegionBounds(region), (Rectangle{13, 29, 33, 44}));
    EXPECT_EQ(MemoryCount::Attempts(), 0);
    Region two = region;
    RegionAddRect(two, {50, 0, 60, 1});
    for (const Region& next : {two, Region::OfRectangle(0, 0, 1, 1), Region(), two}) {
        region = next;
        EXPECT_EQ(region, next);
    }
    EXPECT_EQ(Region(std::move(two)), region);
    EXPECT_TRUE(two.IsEmpty());
}

TEST(Region, RectanglesStayWithinTheLimits) {
    const auto bounds = [](int32_t x, int32_t y, int32_t width, int32_t height) {
        return RegionBounds(Region::OfRectangle(x, y, width, height));
    };
    EXPECT_EQ(bounds(5, 6, -3, -4), (Rectangle{2, 2, 5, 6}));
    EXPECT_EQ(bounds(0, 0, 40000, INT32_MAX), (Rectangle{0, 0, 16384, 16384}));
    EXPECT_EQ(bounds(16380, -20000, 9, 5000), (Rectangle{16380, -16384, 16384, -15000}));
    EXPECT_TRUE(Region::OfRectangle(INT32_MAX, INT32_MIN, 100, -100).IsEmpty());

    Region region;
    RegionAddRect(region, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
    EXPECT_TRUE(region.IsEmpty());
    RegionAddRect(region, {16383, -16384, 32767, -16383});
    EXPECT_EQ(RegionBounds(region), (Rectangle{16383, -16384, 16384, -16383}));
    RegionAddRect(region, {-16383, 0, -16382, 1});
    RegionSnapX8(region);
    EXPECT_EQ(RegionBounds(region), (Rectangle{-16384, -16384, 16384, 1}));
}

TEST(Region, MovedPixelsEndAtTheLimits) {
    Region moved = Region::OfRectangle(16370, 0, 4, 10);
    for (const Rectangle part : {Rectangle{16376, 0, 16378, 5}, {16380, 0, 16384, 10}}) RegionAddRect(moved, part);
    RegionTranslate(moved, 8, 0);
    EXPECT_EQ(moved, Region::OfRectangle(16378, 0, 4, 10));
    RegionTranslate(moved, 0, -16390);
    EXPECT_EQ(moved, Region::OfRectangle(16378, -16384, 4, 4));
    for (const auto& [x, y] : {std::pair{INT32_MAX, 0}, {0, INT32_MIN}}) {
        Region beyond = moved;
        RegionTranslate(beyond, x, y);
        EXPECT_TRUE(beyond.IsEmpty());
    }
}

}  // namespace
}  // namespace clarivex
