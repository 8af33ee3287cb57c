#include "overlay/region.h"

#include <algorithm>
#include <utility>

#include "overlay/region_builder.h"

namespace clarivex {
namespace {

int16_t Limited(int64_t coordinate) {
    return static_cast<int16_t>(std::clamp<int64_t>(coordinate, -coordinateLimit, coordinateLimit));
}

RegionEntry LimitedEntry(int64_t from, int64_t to) { return {Limited(from), Limited(to)}; }

/// The two ends of a size that counts from an origin, backward when it is negative.
RegionEntry Extent(int32_t origin, int32_t size) {
    const int64_t end = int64_t{origin} + Limited(size);
    return LimitedEntry(std::min<int64_t>(origin, end), std::max<int64_t>(origin, end));
}

/// The region with all rows and all columns mapped, in an order that the mapping keeps.
template <class MapRows, class MapColumns>
Region Mapped(const Region& region, MapRows mapRows, MapColumns mapColumns) {
    if (region.IsEmpty()) return {};
    RegionBuilder out(static_cast<int64_t>(region.Entries().size()));
    for (const RegionEntry* entry = region.Entries().data(); *entry != regionSentinel; ++entry) {
        const RegionEntry rows = *entry++;
        out.BeginBand();
        for (; *entry != regionSentinel; ++entry) out.AddSpan(mapColumns(*entry));
        out.EndBand(mapRows(rows));
    }
    return out.Finish();
}

}  // namespace

Region::Region(const Region& other) { Assign(other.Entries()); }

Region::Region(Region&& other) noexcept { *this = std::move(other); }

Region& Region::operator=(const Region& other) {
    if (this != &other) Assign(other.Entries());
    return *this;
}

Region& Region::operator=(Region&& other) noexcept {
    heap = std::move(other.heap);
    inlineBuffer = other.inlineBuffer;
    count = std::exchange(other.count, 0);
    capacity = std::exchange(other.capacity, inlineEntries);
    return *this;
}

Region Region::OfRectangle(int32_t x, int32_t y, int32_t width, int32_t height) {
    return RegionBuilder::OneSpan(Extent(y, height), Extent(x, width));
}

bool Region::operator==(const Region& other) const { return std::ranges::equal(Entries(), other.Entries()); }

void Region::Assign(std::span<const RegionEntry> entries) {
    const auto needed = static_cast<int32_t>(entries.size());
    const bool fitsInline = needed <= inlineEntries && capacity <= inlineEntries;
    const int64_t newCapacity = fitsInline ? inlineEntries : VectorCapacityRule(needed, capacity, count);
    if (newCapacity != capacity) {
        heap.reset();  // before the new block is taken: nothing of the old one is kept
        if (newCapacity > inlineEntries) heap = MakeAlignedArray<RegionEntry>(static_cast<size_t>(newCapacity));
        capacity = static_cast<int32_t>(newCapacity);
    }
    std::ranges::copy(entries, Data());
    count = needed;
}

Rectangle RegionBounds(const Region& region) {
    if (region.IsEmpty()) return {};
    Rectangle bounds{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    for (const Rectangle rectangle : RegionRects(region)) {
        bounds.left = std::min(bounds.left, rectangle.left);
        bounds.top = std::min(bounds.top, rectangle.top);
        bounds.right = std::max(bounds.right, rectangle.right);
        bounds.bottom = std::max(bounds.bottom, rectangle.bottom);
    }
    return bounds;
}

void RegionTranslate(Region& region, int32_t dx, int32_t dy) {
    const auto moved = [](RegionEntry entry, int64_t by) { return LimitedEntry(entry.from + by, entry.to + by); };
    region = Mapped(
        region, [&](RegionEntry rows) { return moved(rows, dy); },
        [&](RegionEntry columns) { return moved(columns, dx); });
}

void RegionSnapX8(Region& region) {
    const auto snapped = [](RegionEntry columns) { return LimitedEntry(columns.from & ~7, (columns.to + 7) & ~7); };
    region = Mapped(
        region, [](RegionEntry rows) { return rows; }, snapped);
}

}  // namespace clarivex
