// The element in the film's way, behind what brings any picture to what it takes.
#pragma once

#include <optional>

#include "gstreamer/player/extent.h"
#include "gstreamer/player/handles.h"
#include "play/play_settings.h"

namespace clarivex {

class Enhancer {
public:
    /// Throws PlayError where GStreamer lacks what belongs to it.
    explicit Enhancer(const Look& look);

    /// For a playbin, as its video filter.
    GstElement* Filter() const { return filter.get(); }

    /// The picture that comes out, with its pixel aspect counted; none before the first one.
    std::optional<Extent> Picture() const;

    /// Tells the element what has changed since the last look. Returns whether anything has.
    bool Follow(const Look& look);

private:
    void SetAll(const Look& look);

    Reference<GstElement> filter;
    GstElement* element = nullptr;  // the bin's
    Look followed;
};

}  // namespace clarivex
