// Jumps in the film, one at a time: those asked for meanwhile become one.
#pragma once

#include <optional>

#include "gstreamer/player/handles.h"

namespace clarivex {

/// Times are in nanoseconds.
class Seeker {
public:
    /// playbin  outlives the seeker
    explicit Seeker(GstElement* playbin) : player(playbin) {}

    /// Where the film stands, or is about to; negative when that is not known.
    gint64 Position() const;

    /// Negative when the film does not tell.
    gint64 Duration() const;

    /// Jumps to a moment, at most to the end. False where the film allows no jumps.
    bool To(gint64 time);
    bool By(gint64 time) { return To(Position() + time); }

    /// Has the picture of this moment made again. False where the film allows no jumps.
    bool Again() { return To(Position()); }

    /// To be called when the film stands where it was sent.
    void Arrived();

private:
    bool Go(gint64 time);

    GstElement* player;
    std::optional<gint64> target;  // of the jump on its way
    std::optional<gint64> next;    // behind it
};

}  // namespace clarivex
