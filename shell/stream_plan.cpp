// Decides about a stream from its header and the settings.
#include "shell/stream_plan.h"

#include <cstdlib>

#include "pipeline/cpu_speed.h"
#include "pipeline/frame_geometry.h"
#include "shell/plugin_settings.h"

namespace clarivex {
namespace {

constexpr int64_t highDefinitionArea = 1024 * 576;
constexpr int32_t smallestSide = 16;

/// A side as the target rectangle clips it; an edge beyond the picture counts as unset.
int32_t ClippedSide(int32_t side, int32_t targetEnd) { return targetEnd != 0 && side >= targetEnd ? targetEnd : side; }

float PictureAspect(const VideoHeader& header) {
    const bool stated = header.aspectX != 0 && header.aspectY != 0;
    return stated ? static_cast<float>(static_cast<double>(header.aspectX) / header.aspectY) : 0.0F;
}

int64_t AreaOf(const FrameSize& picture) { return int64_t{picture.width} * picture.height; }

/// Turns the input's header into the one that is offered. The target rectangle keeps the source's size.
void OfferPicture(const FrameSize& picture, VideoHeader& header) {
    header.target.left = 0;
    header.target.top = 0;
    BITMAPINFOHEADER& bitmap = header.bitmap;
    bitmap.biWidth = picture.width;
    bitmap.biHeight = bitmap.biHeight < 0 ? -picture.height : picture.height;
    const int64_t bits = int64_t{picture.height} * picture.width * bitmap.biBitCount;
    bitmap.biSizeImage = static_cast<DWORD>(bits >> 3);
}

}  // namespace

bool TakesHd(const PlanSettings& settings, const FrameSize& picture) {
    return settings.allowHd || AreaOf(picture) < highDefinitionArea;
}

bool WantsScaling(const PlanSettings& settings, const FrameSize& picture) {
    switch (settings.mode) {
        case modeNever: return false;
        case modeAlways: return true;
        default: return SpeedScore(settings.speedGHz(), AreaOf(picture)) >= 1.0;
    }
}

float PixelAspect(const VideoHeader& header, const FrameSize& picture) {
    const float pictureAspect = PictureAspect(header);
    if (pictureAspect == 0.0F) return 1.0F;
    return static_cast<float>(1.0 / (static_cast<double>(pictureAspect) / picture.width * picture.height));
}

bool PlanStream(const PlanSettings& settings, VideoHeader& header, StreamPlan& plan) {
    plan.scalingOn = false;
    plan.sourceIsVih2WithoutBitrate = header.kind == HeaderKind::videoInfo2 && header.bitRate == 0;

    const FrameSize picture{header.bitmap.biWidth, std::abs(static_cast<int32_t>(header.bitmap.biHeight))};
    plan.sourceWidth = ClippedSide(picture.width, header.target.right);
    plan.sourceHeight = ClippedSide(picture.height, header.target.bottom);
    const FrameSize clipped{plan.sourceWidth, plan.sourceHeight};

    plan.hdAccepted = TakesHd(settings, clipped);
    if (!plan.hdAccepted) return false;
    const bool scaling = WantsScaling(settings, clipped);  // may measure the processor, even for what is refused next
    if (picture.width < smallestSide || picture.height < smallestSide) return false;
    plan.scalingOn = scaling;
    plan.pixelAspect = PixelAspect(header, picture);
    OfferPicture(scaling ? OutputSize(picture.width, picture.height, true) : picture, header);
    return true;
}

}  // namespace clarivex
