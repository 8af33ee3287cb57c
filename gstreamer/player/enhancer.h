// The element in the film's way, between what brings any picture to what it takes.
#pragma once

#include <optional>

#include "gstreamer/player/extent.h"
#include "gstreamer/player/handles.h"
#include "play/play_settings.h"

namespace clarivex {

class Enhancer {
public:
    /// Throws PlayError where GStreamer lacks what belongs to it.
    explicit Enhancer(const PlaySettings& settings);

    /// For a playbin, as its video filter.
    GstElement* Filter() const { return filter.get(); }

    /// The picture that comes out, with its pixel aspect counted; none before the first one.
    std::optional<Extent> Picture() const;

    /// Tells the element what has changed since the last settings. Returns whether anything has.
    bool Follow(const PlaySettings& settings);

private:
    void SetAll(const PlaySettings& settings);

    Reference<GstElement> filter;
    GstElement* element = nullptr;  // the bin's
    PlaySettings followed;
};

}  // namespace clarivex
