// Working memory of the engine that is kept between frames so that none is allocated while the picture's size stays.
#pragma once

#include "algorithms/unscaled.h"
#include "algorithms/working_image.h"
#include "engine/picture_scaler.h"
#include "engine/sleeping/wide_scaler.h"

namespace clarivex {

struct EngineWorkspace {
    WorkingImage privateCopy;  ///< the frame, for stages that work in place
    WorkingImage between;      ///< the picture between the two passes of a scale on both axes
    ScalerScratch scaler;
    WideScratch wide;
    SlackRow<uint8_t> chroma;  ///< a chroma plane between the two passes of a twofold scale on both axes
    UnscaledScratch unscaled;
};

}  // namespace clarivex
