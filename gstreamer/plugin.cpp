// What GStreamer looks for in libgstclarivex.so.
#include <clarivex/clarivex.h>
#include <gst/gst.h>

#include "gstreamer/element.h"

#define PACKAGE "clarivex"

namespace {

gboolean Initialise(GstPlugin* plugin) { return clarivex::RegisterElement(plugin) ? TRUE : FALSE; }

}  // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, clarivex, "Video enhancement on the processor alone",
                  Initialise, CVX_VERSION_TEXT, "Proprietary", "Clarivex", "https://example.org/clarivex")
