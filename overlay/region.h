// Sets of pixels as sorted bands of spans: what an element of the overlay covers, hides, or has changed.
#pragma once

#include <array>
#include <cstdint>
#include <iterator>
#include <span>

#include "overlay/growing_array.h"
#include "overlay/rectangle.h"

namespace clarivex {

/// A pair of coordinates: the rows of a band or the columns of a span, the end excluded; or the sentinel.
struct RegionEntry {
    int16_t from = 0;
    int16_t to = 0;

    bool operator==(const RegionEntry&) const = default;
};

/// Coordinates of a region lie between -coordinateLimit and coordinateLimit.
constexpr int32_t coordinateLimit = 16384;

/// Closes the spans of a band, and the list of bands.
constexpr RegionEntry regionSentinel{32767, 32767};

/// A set of pixels. Per band from top to bottom: its rows, its spans from left to right, the sentinel; behind the last
/// band one more sentinel. Bands do not overlap and hold at least one span, spans of a band do not touch, and touching
/// bands differ in their spans, so equal sets have equal entries. The empty set has no entries at all.
///
/// Up to 4 entries (one rectangle) stand in the object itself, more in a block that waits for memory.
class Region {
public:
    static constexpr int32_t inlineEntries = 4;
    static constexpr int32_t rectangleEntries = 4;  ///< entries of a single rectangle

    Region() = default;
    Region(const Region& other);
    Region(Region&& other) noexcept;
    Region& operator=(const Region& other);
    Region& operator=(Region&& other) noexcept;
    ~Region() = default;

    /// The rectangle at (x, y). First the sizes, then the edges are limited to ±coordinateLimit. A size of 0 gives the
    /// empty region, a negative one reaches to the other side of (x, y).
    static Region OfRectangle(int32_t x, int32_t y, int32_t width, int32_t height);

    bool IsEmpty() const { return count == 0; }
    bool IsRectangle() const { return count == rectangleEntries; }

    /// All entries, sentinels included.
    std::span<const RegionEntry> Entries() const { return {Data(), static_cast<size_t>(count)}; }

    /// Makes the region empty; keeps its storage.
    void Clear() { count = 0; }

    bool operator==(const Region& other) const;

private:
    friend class RegionBuilder;

    RegionEntry* Data() { return heap ? heap.get() : inlineBuffer.data(); }
    const RegionEntry* Data() const { return heap ? heap.get() : inlineBuffer.data(); }

    /// Takes over a whole list of entries, not its own.
    void Assign(std::span<const RegionEntry> entries);

    AlignedArray<RegionEntry> heap;
    std::array<RegionEntry, inlineEntries> inlineBuffer = {};
    int32_t count = 0;
    int32_t capacity = inlineEntries;
};

/// Pixels in a or b, in both, in just one, in a but not in b. Any argument may be empty.
[[nodiscard]] Region RegionUnion(const Region& a, const Region& b);
[[nodiscard]] Region RegionIntersect(const Region& a, const Region& b);
[[nodiscard]] Region RegionXor(const Region& a, const Region& b);
[[nodiscard]] Region RegionSubtract(const Region& a, const Region& b);

/// The smallest rectangle around the region; all zero when it is empty.
Rectangle RegionBounds(const Region& region);

/// The rectangles of a region, one per span, in the order of the entries: to be walked by a range-based for. The region
/// must neither change nor go meanwhile.
class RegionRects {
public:
    explicit RegionRects(const Region& region) : entries(region.Entries()) {}
    explicit RegionRects(Region&& region) = delete;

    class Iterator {
    public:
        explicit Iterator(const RegionEntry* first) : entry(first) { EnterBand(); }

        Rectangle operator*() const { return {entry->from, rows.from, entry->to, rows.to}; }
        Iterator& operator++() {
            if (*++entry == regionSentinel) {
                ++entry;
                EnterBand();
            }
            return *this;
        }
        bool operator==(std::default_sentinel_t /*end*/) const { return entry == nullptr; }

    private:
        /// A band holds at least one span. Behind the last band stands a sentinel.
        void EnterBand() {
            if (entry == nullptr) return;
            rows = *entry;
            entry = rows == regionSentinel ? nullptr : entry + 1;
        }

        const RegionEntry* entry;  // a span; null at the end
        RegionEntry rows;
    };

    Iterator begin() const { return Iterator(entries.empty() ? nullptr : entries.data()); }
    std::default_sentinel_t end() const { return {}; }

private:
    std::span<const RegionEntry> entries;
};

/// Moves the region; every coordinate is limited to ±coordinateLimit, so what moves beyond is lost.
void RegionTranslate(Region& region, int32_t dx, int32_t dy);

/// Widens every span to whole groups of 8 columns.
void RegionSnapX8(Region& region);

}  // namespace clarivex
