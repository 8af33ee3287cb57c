#include "gstreamer/player/seeker.h"

#include <algorithm>
#include <utility>

namespace clarivex {

gint64 Seeker::Position() const {
    if (next) return *next;
    if (target) return *target;
    gint64 position = -1;
    return gst_element_query_position(player, GST_FORMAT_TIME, &position) != 0 ? position : -1;
}

gint64 Seeker::Duration() const {
    gint64 duration = -1;
    return gst_element_query_duration(player, GST_FORMAT_TIME, &duration) != 0 ? duration : -1;
}

bool Seeker::To(gint64 time) {
    const gint64 end = Duration();
    if (end >= 0) time = std::min(time, end);
    time = std::max<gint64>(time, 0);
    if (!target) return Go(time);
    next = time;
    return true;
}

bool Seeker::Go(gint64 time) {
    constexpr auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    if (gst_element_seek_simple(player, GST_FORMAT_TIME, flags, time) == 0) return false;
    target = time;
    return true;
}

void Seeker::Arrived() {
    target.reset();
    if (next) Go(*std::exchange(next, std::nullopt));
}

}  // namespace clarivex
