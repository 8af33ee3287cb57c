#include "overlay/overlay.h"

#include <utility>

#include "overlay/compositor.h"

namespace clarivex {

Overlay::Overlay(std::unique_ptr<FontEngine> fontEngine) : fonts(std::move(fontEngine)), scene(fonts.get()) {
    sceneGroup.AddChild(scene);
}

void OverlayCompose(Overlay& overlay, int32_t captionFrame, int32_t width, int32_t height, float pixelAspect,
                    const KernelTable& kernels) {
    OverlayTiles& tiles = overlay.tiles;
    tiles.Resize(width, height);
    overlay.scene.SetFrame(captionFrame);
    const Composition composition =
        Compose(overlay.sceneGroup, tiles, width, height, pixelAspect, {kernels}, {.releaseWhenEmpty = true});
    tiles.MarkAllRowsEmpty();
    for (const Rectangle rectangle : RegionRects(composition.content)) tiles.MarkRows(rectangle.top, rectangle.bottom);
}

}  // namespace clarivex
