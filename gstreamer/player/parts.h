// Elements by their names.
#pragma once

#include <gst/video/video.h>

#include <initializer_list>
#include <optional>

#include "gstreamer/player/handles.h"

namespace clarivex {

/// A new element that nothing else holds. Throws PlayError, which names Debian's package, where GStreamer has none of the name.
Reference<GstElement> MakePart(const char* name);

/// Such elements in a row, in a bin with pads at both ends. Throws PlayError.
Reference<GstElement> MakeRow(std::initializer_list<const char*> names);

/// An element of that kind in a bin; null when there is none.
Reference<GstElement> PartOf(GstElement* bin, const char* name);

/// The pictures that caps tell of; none for null and for caps of other kinds.
std::optional<GstVideoInfo> VideoInfoOf(const GstCaps* caps);

/// The pictures that go through a pad at the moment; none for null and while nothing goes through.
std::optional<GstVideoInfo> VideoInfoAt(GstPad* pad);

}  // namespace clarivex
