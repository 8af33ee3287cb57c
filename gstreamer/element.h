// The element `clarivex`: video in system memory, enhanced by the C library.
#pragma once

#include <gst/gst.h>

namespace clarivex {

/// Makes the element known under its name. The plug-in's first and only duty; false when GStreamer refuses.
bool RegisterElement(GstPlugin* plugin);

}  // namespace clarivex
