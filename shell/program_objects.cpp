// The media object alone: there are no settings pages on this system, and no registry.
#include "shell/object_map.h"

#include "shell/class_ids.h"
#include "shell/media_object.h"

namespace clarivex {

std::span<const ObjectMapEntry> ObjectMap() {
    static constexpr ObjectMapEntry entries[] = {{clsidMediaObject, 0, CreateObject<CVXMediaObject>}};
    return entries;
}

}  // namespace clarivex
