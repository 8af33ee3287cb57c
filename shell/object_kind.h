// What one kind of media object has different from another, as values.
#pragma once

#include <span>

#include "platform/win32.h"
#include "shell/media_type.h"
#include "shell/settings_place.h"

namespace clarivex {

struct ObjectKind {
    std::span<const StreamFormat> formats;  ///< taken and given, in the order in which they are offered
    GUID page;                              ///< class of its settings page
    SettingsPlace settings;                 ///< what that page writes and the object starts with
    bool repeatsInputType = false;          ///< once an input type is set, it is offered in place of the formats
    bool offerSettles = false;              ///< what was offered settles a stream, whatever output type is then set
    StreamSide toldLength = StreamSide::output;  ///< the side whose image bytes an output buffer is said to hold
    bool tellsAllTimes = false;                  ///< output is said to have times also where the input told none
};

}  // namespace clarivex
