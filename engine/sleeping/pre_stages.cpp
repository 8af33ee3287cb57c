#include "engine/sleeping/pre_stages.h"

#include "algorithms/sleeping/detail_strips.h"

namespace clarivex {

void SmoothRowStrip(const Plane& strip, const PreStage& preStage) {
    if (preStage.gated) GatedDetailRows(strip, preStage.gains, RowDither::byRow);
    if (preStage.kernel == PreKernel::narrow)
        NarrowDetailRows(strip, preStage.gains);
    else if (preStage.kernel == PreKernel::knee)
        KneeDetailRows(strip, preStage.gains, RowDither::byRow);
}

void SmoothColumnStrips(const Plane& plane, const PreStage& preStage) {
    for (int32_t x = 0; x < plane.width; x += stripSize) {
        const Plane strip{plane.data + x, stripSize, plane.height, plane.stride};
        if (preStage.gated) GatedDetailColumns(strip, preStage.gains);
        if (preStage.kernel == PreKernel::narrow)
            NarrowDetailColumns(strip, preStage.gains);
        else if (preStage.kernel == PreKernel::knee)
            KneeDetailColumns(strip, preStage.gains);
    }
}

}  // namespace clarivex
