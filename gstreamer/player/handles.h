// What GStreamer and GLib give out, owned.
#pragma once

#include <gst/gst.h>

#include <memory>
#include <string>

namespace clarivex {

template <auto release>
struct ReleasedBy {
    template <class Object>
    void operator()(Object* object) const {
        release(object);
    }
};

/// A reference to an element, a pad or a bus.
template <class Object>
using Reference = std::unique_ptr<Object, ReleasedBy<gst_object_unref>>;
struct CapsRelease {
    void operator()(GstCaps* caps) const { gst_caps_unref(caps); }
};
using Caps = std::unique_ptr<GstCaps, CapsRelease>;
using Error = std::unique_ptr<GError, ReleasedBy<g_error_free>>;
using Text = std::unique_ptr<gchar, ReleasedBy<g_free>>;

/// The text, or an empty one in place of none.
inline std::string Taken(gchar* text) {
    const Text owned(text);
    return owned ? owned.get() : "";
}

/// A source of the main loop, which leaves it with this.
class LoopSource {
public:
    LoopSource() = default;
    explicit LoopSource(guint source) : id(source) {}
    ~LoopSource() { Remove(); }
    LoopSource(const LoopSource&) = delete;
    LoopSource& operator=(const LoopSource&) = delete;

    void Take(guint source) {
        Remove();
        id = source;
    }
    /// For a source that has left by itself.
    void Forget() { id = 0; }

private:
    void Remove() {
        if (id != 0) g_source_remove(id);
        id = 0;
    }
    guint id = 0;
};

}  // namespace clarivex
