// The media object and its settings page.
#include "shell/object_map.h"

#include "shell/class_ids.h"
#include "shell/media_object.h"
#include "shell/windows/property_page.h"
#include "shell/windows/resource_ids.h"

namespace clarivex {

std::span<const ObjectMapEntry> ObjectMap() {
    static constexpr ObjectMapEntry entries[] = {
        {clsidMediaObject, CVX_SCRIPT_MEDIA_OBJECT, CreateObject<CVXMediaObject>},
        {clsidPropertyPage, CVX_SCRIPT_PROPERTY_PAGE, CreatePlayersPage},
    };
    return entries;
}

}  // namespace clarivex
