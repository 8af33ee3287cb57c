// What GStreamer has no plug-in for, and what brings it.
#pragma once

#include <string>
#include <vector>

#include "gstreamer/player/handles.h"

namespace clarivex {

class MissingPlugins {
public:
    /// Keeps what the message tells. Messages of other kinds tell nothing.
    void Take(GstMessage* message);

    bool Empty() const { return wants.empty(); }

    /// "GStreamer lacks what it needs: …; install …", in Debian's names. Not for none.
    std::string Text() const;

private:
    std::vector<std::string> wants;  // each once, as `packages`
    std::vector<std::string> packages;
};

}  // namespace clarivex
