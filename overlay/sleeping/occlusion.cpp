#include "overlay/sleeping/occlusion.h"

#include <utility>

#include "runtime/memory.h"

namespace clarivex {

void Occlusion::Cover(const void* element, const Region& content, const Region& opaqueOfElement) {
    Region hidden = RegionIntersect(opaque, content);
    if (!hidden.IsEmpty()) {
        auto record = WaitForMemory([] { return std::make_unique<Record>(); });
        record->element = element;
        record->hidden = std::move(hidden);
        record->below = std::move(records);
        records = std::move(record);
    }
    opaque = RegionUnion(opaque, RegionIntersect(content, opaqueOfElement));
}

/// Without a record of its own an element leaves the next one's where it is.
Region Occlusion::TakeHidden(const void* element) {
    if (!records || records->element != element) return {};
    Region hidden = std::move(records->hidden);
    records = std::move(records->below);
    return hidden;
}

}  // namespace clarivex
