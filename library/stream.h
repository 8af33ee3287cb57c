// What a context is: one stream of pictures of one kind, with the settings that it was told last.
#pragma once

#include <clarivex/clarivex.h>

#include <memory>

#include "library/planes.h"
#include "library/settings.h"
#include "pipeline/plane_stream.h"

namespace clarivex {

/// One stream of pictures. One thread at a time. Any call throws what MemoryShortage throws.
class Stream {
public:
    Stream(const PictureKind& kind, const SettledSettings& settings);

    /// Other settings from the next picture on.
    void Use(const SettledSettings& wanted) { settings = wanted; }

    const PictureKind& Source() const { return kind; }
    PictureKind Target() const { return {TargetSize(kind.size, settings), kind.format}; }

    /// Enhances a picture. The planes have passed CheckPlanes.
    void Process(const cvx_source& source, const cvx_target& target);

    /// Begins anew, as if just made. Nothing has changed when it throws.
    void Restart();

private:
    PlaneRequest Request() const;

    PictureKind kind;
    SettledSettings settings;
    std::unique_ptr<PlaneStream> planes;
};

}  // namespace clarivex
