// Elements by their names.
#pragma once

#include "gstreamer/player/handles.h"

namespace clarivex {

/// A new element that nothing else holds. Throws PlayError, which names Debian's package, where GStreamer has none of the name.
Reference<GstElement> MakePart(const char* name);

/// Such elements in a row, in a bin with pads at both ends. Throws PlayError.
Reference<GstElement> MakeRow(std::initializer_list<const char*> names);

/// An element of that kind in a bin; null when there is none.
Reference<GstElement> PartOf(GstElement* bin, const char* name);

/// The caps of what flows through an element's pad at the moment; null while nothing does.
Caps CapsAt(GstElement* element, const char* pad);

}  // namespace clarivex
