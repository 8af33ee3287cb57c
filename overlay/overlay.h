// What is drawn over the pictures of one stream: a caption that fades in and out over its first frames.
#pragma once

#include <cstdint>
#include <memory>

#include "overlay/element.h"
#include "overlay/font_engine.h"
#include "overlay/overlay_scene.h"
#include "overlay/overlay_tiles.h"

namespace clarivex {

/// A scene with the caption and the tiles it is drawn into. Without fonts, or without a font engine (null), it draws
/// nothing. On the frame thread only.
class Overlay {
public:
    explicit Overlay(std::unique_ptr<FontEngine> fontEngine);

    /// What the last frame composed holds.
    const OverlayTiles& Tiles() const { return tiles; }

private:
    friend void OverlayCompose(Overlay& overlay, int32_t captionFrame, int32_t width, int32_t height, float pixelAspect,
                               const KernelTable& kernels);

    std::unique_ptr<FontEngine> fonts;
    OverlayTiles tiles;
    OverlayScene scene;
    TileGroup sceneGroup;
};

/// Prepares the overlay of one frame: follows the picture's size, draws what changed since the last frame, and marks the
/// rows that hold something. While there is nothing to draw, the tiles hold no memory.
///
/// captionFrame   as CaptionRun gives it: from 1 on, or captionHidden
/// width, height  of the output frame, 0 … 65536; beyond 16384 nothing is drawn
/// pixelAspect    width of a pixel in relation to its height; 1 when it is not a positive number
void OverlayCompose(Overlay& overlay, int32_t captionFrame, int32_t width, int32_t height, float pixelAspect,
                    const KernelTable& kernels);

}  // namespace clarivex
