#include "library/stream.h"

#include <algorithm>

namespace clarivex {
namespace {

template <class Planes, class Picture>
Planes PointersOf(const PictureForm& form, const Picture& picture) {
    Planes planes;
    const int32_t count = PlaneCount(form.format);
    std::copy_n(picture.plane, count, planes.plane);
    std::copy_n(picture.stride, count, planes.stride);
    return planes;
}

}  // namespace

Stream::Stream(const PictureKind& kind, const SettledSettings& settings)
    : kind(kind), settings(settings), planes(std::make_unique<PlaneStream>(*settings.kernels)) {}

void Stream::Restart() { planes = std::make_unique<PlaneStream>(*settings.kernels); }

void Stream::Process(const cvx_source& source, const cvx_target& target) {
    const PlaneRequest request = Request();
    planes->Process(request, PointersOf<SourcePlanes>(request.source, source),
                    PointersOf<TargetPlanes>(request.source, target));
}

PlaneRequest Stream::Request() const {
    const cvx_settings& asked = settings.asked;
    return {.source = FormOf(kind),
            .enlarged = settings.enlarged,
            .targetWidth = Target().size.width,
            .lighting = asked.lighting != 0,
            .noise = asked.noise != 0,
            .caption = asked.caption != 0,
            .liftSizeLimits = asked.limits == CVX_LIMITS_LIFTED,
            .sharpness = asked.sharpness,
            .pixelAspect = asked.pixel_aspect,
            .kernels = settings.kernels};
}

}  // namespace clarivex
