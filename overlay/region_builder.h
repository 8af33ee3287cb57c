// How regions are written: what the operations and the helpers of regions share.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "overlay/region.h"

namespace clarivex {

/// Writes a region band by band, from top to bottom, and sees to its form: nothing empty, spans that touch joined, equal
/// bands that touch merged. The one place where regions are written.
class RegionBuilder {
public:
    /// expectedEntries  of the finished region; it may get larger
    explicit RegionBuilder(int64_t expectedEntries) {
        if (expectedEntries > capacity) MoveTo(std::min(expectedEntries, largestExpectation));
    }
    RegionBuilder(const RegionBuilder&) = delete;
    RegionBuilder& operator=(const RegionBuilder&) = delete;

    void BeginBand() {
        band = count;
        Push({});  // its rows, once the band is known to stay
    }

    /// Columns of the band, not left of the span before; may be none.
    void AddSpan(RegionEntry columns) {
        if (columns.from >= columns.to) return;
        if (count > band + 1 && columns.from <= room[count - 1].to)
            room[count - 1].to = std::max(room[count - 1].to, columns.to);
        else
            Push(columns);
    }

    /// Rows of the band, not above the end of the band before; may be none.
    void EndBand(RegionEntry rows) {
        if (count == band + 1 || rows.from >= rows.to) {
            count = band;
        } else if (ContinuesPreviousBand(rows.from)) {
            room[previousBand].to = rows.to;
            count = band;
        } else {
            room[band] = rows;
            Push(regionSentinel);
            previousBand = band;
        }
    }

    /// The region of all bands so far; the last call.
    [[nodiscard]] Region Finish() {
        if (count > 0) Push(regionSentinel);
        Region region;
        region.Assign({room, static_cast<size_t>(count)});
        return region;
    }

    /// A region of one band and one span; of none when either is empty or ends before it begins.
    [[nodiscard]] static Region OneSpan(RegionEntry rows, RegionEntry columns) {
        RegionBuilder out(Region::rectangleEntries);
        out.BeginBand();
        out.AddSpan(columns);
        out.EndBand(rows);
        return out.Finish();
    }

private:
    /// Most results, every rectangle among them, need no block until they are stored.
    static constexpr int32_t localEntries = 64;

    /// More is not taken in advance: what could become of two ragged regions is far more than what does.
    static constexpr int64_t largestExpectation = 65536;

    void Push(RegionEntry entry) {
        if (count == capacity) MoveTo(VectorCapacityRule(count + 1, capacity, count));
        room[count++] = entry;
    }

    void MoveTo(int64_t newCapacity) {
        auto block = MakeAlignedArray<RegionEntry>(static_cast<size_t>(newCapacity));
        std::copy_n(room, count, block.get());
        heap = std::move(block);
        room = heap.get();
        capacity = static_cast<int32_t>(newCapacity);
    }

    bool ContinuesPreviousBand(int16_t top) const {
        if (previousBand < 0 || room[previousBand].to != top) return false;
        return std::equal(room + previousBand + 1, room + band - 1, room + band + 1, room + count);
    }

    std::array<RegionEntry, localEntries> local;
    AlignedArray<RegionEntry> heap;
    RegionEntry* room = local.data();
    int32_t capacity = localEntries;
    int32_t count = 0;
    int32_t band = 0;           // where the band that is written begins
    int32_t previousBand = -1;  // where the last finished band begins
};

}  // namespace clarivex
