#include "engine/enhancement_engine.h"

namespace clarivex {

void EnhancementEngine::Start() {
    noiseReduction = 0.0F;
    verticalFirst = 0;
    tuningSet = 0;
    noiseStagesH = 0;
    noiseStagesV = 0;
    columnRankMode = 2;
    horizontalMode = 1;
    verticalMode = 1;
}

}  // namespace clarivex
