// What opaque elements hide of those below them. Nothing in the caption is opaque, so all of it stays empty there.
#pragma once

#include <memory>

#include "overlay/region.h"

namespace clarivex {

/// Of one composition: filled while its elements are updated, from top to bottom, and taken back while they are painted,
/// from bottom to top. Takes no memory as long as nothing is hidden.
class Occlusion {
public:
    /// Where elements hide what is below, of those that were covered so far.
    const Region& Opaque() const { return opaque; }

    /// What stands under an element of this content is hidden where it is opaque. What is opaque above the element is
    /// noted as hidden of it.
    ///
    /// element  a name for the element, until TakeHidden
    void Cover(const void* element, const Region& content, const Region& opaqueOfElement);

    /// What is hidden of the element; of each that was covered once, in the opposite order.
    Region TakeHidden(const void* element);

private:
    /// What is hidden of an element. Records form a stack.
    struct Record {
        const void* element = nullptr;
        Region hidden;
        std::unique_ptr<Record> below;
    };

    Region opaque;
    std::unique_ptr<Record> records;  // the lowest element's first, in the order of painting
};

}  // namespace clarivex
