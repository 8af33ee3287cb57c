// Stages of a pass down the columns that the plug-in never switches on.
#pragma once

#include "engine/cross_stage.h"
#include "engine/sleeping/pre_stages.h"

namespace clarivex {

struct SleepingColumnStages {
    PreStage preStage;  ///< works in place on the source, which then has to be writable
    bool crossOn = false;
    CrossGains cross;
};

}  // namespace clarivex
