// The set operations: both band lists are walked together from edge to edge, and so are the spans of the bands in force.
#include "overlay/region.h"

#include <algorithm>
#include <cstdint>

#include "overlay/region_builder.h"

namespace clarivex {
namespace {

/// Whether a pixel belongs to the result, as bit 2 · (it is in a) + (it is in b).
enum class TruthTable : uint8_t { either = 0b1110, both = 0b1000, justOne = 0b0110, firstOnly = 0b0100 };

bool IsInside(TruthTable table, bool inA, bool inB) {
    return (static_cast<int>(table) >> (2 * static_cast<int>(inA) + static_cast<int>(inB)) & 1) != 0;
}

const RegionEntry* NextSpan(const RegionEntry* span) { return span + 1; }

const RegionEntry* NextBand(const RegionEntry* band) {
    while (*band != regionSentinel) ++band;
    return band + 1;
}

/// Walks the beginnings and ends of one region's bands, or of one band's spans, in their order.
template <const RegionEntry* (*next)(const RegionEntry*)>
class EdgeWalk {
public:
    explicit EdgeWalk(const RegionEntry* first) : entry(first) {}

    bool IsInside() const { return inside; }
    int16_t NextEdge() const { return inside ? entry->to : entry->from; }  // the sentinel's when there is none left

    // Spans of the band that the walk is inside of.
    const RegionEntry* Spans() const { return inside ? entry + 1 : &regionSentinel; }

    void PassEdge(int16_t edge) {
        while (NextEdge() == edge) {
            if (inside) entry = next(entry);
            inside = !inside;
        }
    }

private:
    const RegionEntry* entry;
    bool inside = false;
};

void MergeSpans(const RegionEntry* spansA, const RegionEntry* spansB, TruthTable table, RegionBuilder& out) {
    EdgeWalk<NextSpan> a(spansA);
    EdgeWalk<NextSpan> b(spansB);
    int16_t from = 0;
    bool inside = false;
    for (int16_t x; (x = std::min(a.NextEdge(), b.NextEdge())) != regionSentinel.from;) {
        a.PassEdge(x);
        b.PassEdge(x);
        if (inside) out.AddSpan({from, x});
        inside = IsInside(table, a.IsInside(), b.IsInside());
        from = x;
    }
}

/// Neither region may be empty.
Region Combine(const Region& regionA, const Region& regionB, TruthTable table, int64_t expectedEntries) {
    RegionBuilder out(expectedEntries);
    EdgeWalk<NextBand> a(regionA.Entries().data());
    EdgeWalk<NextBand> b(regionB.Entries().data());
    int16_t top = 0;  // above the first edge there are no spans
    for (int16_t y; (y = std::min(a.NextEdge(), b.NextEdge())) != regionSentinel.from; top = y) {
        out.BeginBand();
        MergeSpans(a.Spans(), b.Spans(), table, out);
        out.EndBand({top, y});
        a.PassEdge(y);
        b.PassEdge(y);
    }
    return out.Finish();
}

int64_t EntryCount(const Region& region) { return static_cast<int64_t>(region.Entries().size()); }

/// An intersection never needs more: where bands of s and t spans meet, at most s + t + 1 entries come of it, which is
/// at most (s + 2)(t + 2) / 3.
int64_t EntriesOfIntersection(const Region& a, const Region& b) {
    return (EntryCount(a) - 1) * (EntryCount(b) - 1) / 3 + 2;
}

/// Nearly always enough; a band of many spans that small ones cut into many needs more.
int64_t EntriesOfCombination(const Region& a, const Region& b) {
    return EntryCount(a) + EntryCount(b) + (EntryCount(a) - 1) * (EntryCount(b) - 1) / 2;
}

/// Where both entries overlap; the end may come before the beginning.
RegionEntry Overlap(RegionEntry a, RegionEntry b) { return {std::max(a.from, b.from), std::min(a.to, b.to)}; }

}  // namespace

Region RegionUnion(const Region& a, const Region& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return Combine(a, b, TruthTable::either, EntriesOfCombination(a, b));
}

Region RegionIntersect(const Region& a, const Region& b) {
    if (a.IsEmpty() || b.IsEmpty()) return {};
    if (a.IsRectangle() && b.IsRectangle())
        return RegionBuilder::OneSpan(Overlap(a.Entries()[0], b.Entries()[0]), Overlap(a.Entries()[1], b.Entries()[1]));
    return Combine(a, b, TruthTable::both, EntriesOfIntersection(a, b));
}

Region RegionXor(const Region& a, const Region& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return Combine(a, b, TruthTable::justOne, EntriesOfCombination(a, b));
}

Region RegionSubtract(const Region& a, const Region& b) {
    if (a.IsEmpty() || b.IsEmpty()) return a;
    return Combine(a, b, TruthTable::firstOnly, EntriesOfCombination(a, b));
}

}  // namespace clarivex
