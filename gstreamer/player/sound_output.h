// Where the sound goes.
#pragma once

#include "gstreamer/player/handles.h"

namespace clarivex {

/// For a playbin, as its audio sink.
struct SoundOutput {
    Reference<GstElement> sink;
    bool isHeard = true;  ///< false: there is no device, and the sink drops what it gets in its time
};

/// The session's sound device, or a sink that drops all where there is none. Throws PlayError where GStreamer lacks both.
SoundOutput MakeSoundOutput();

/// A sink that drops all.
SoundOutput MakeSilence();

}  // namespace clarivex
