#include "pipeline/picture_planes.h"

#include <cstring>

namespace clarivex {

int32_t PlaneCount(PixelFormat format) {
    switch (format) {
        case PixelFormat::yuy2: return 1;
        case PixelFormat::nv12: return 2;
        default: return 3;
    }
}

PlaneShape ShapeOf(const PictureForm& form, int32_t plane) {
    const int32_t chromaColumns = (form.size.width + 1) / 2;
    if (form.format == PixelFormat::yuy2) return {4 * chromaColumns, form.size.height};
    if (plane == 0) return {form.size.width, form.size.height};
    return {form.format == PixelFormat::nv12 ? 2 * chromaColumns : chromaColumns, (form.size.height + 1) / 2};
}

void CopyRows(const PictureForm& form, int32_t plane, const SourcePlanes& source, const TargetPlanes& target,
              int32_t firstRow) {
    const PlaneShape shape = ShapeOf(form, plane);
    for (ptrdiff_t y = firstRow; y < shape.rows; ++y)
        std::memcpy(target.plane[plane] + y * target.stride[plane], source.plane[plane] + y * source.stride[plane],
                    static_cast<size_t>(shape.rowBytes));
}

}  // namespace clarivex
