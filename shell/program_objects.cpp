// The media objects of a program that has them linked in. A module names its own classes instead, so this is not linked into
// one.
#include "shell/class_ids.h"
#include "shell/media_object.h"
#include "shell/object_map.h"
#include "shell/video_effect.h"

namespace clarivex {

std::span<const ObjectMapEntry> ObjectMap() {
    static constexpr ObjectMapEntry entries[] = {{clsidMediaObject, 0, CreateObject<CVXMediaObject>},
                                                 {clsidVideoEffect, 0, CreateObject<CVXVideoEffect>}};
    return entries;
}

}  // namespace clarivex
