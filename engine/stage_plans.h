// Settings and gains of a frame turned into what the stages of the scalers take.
#pragma once

#include "engine/column_scaler.h"
#include "engine/detail_gains.h"
#include "engine/engine_settings.h"
#include "engine/post_filter.h"
#include "engine/row_scaler.h"
#include "engine/sleeping/noise_reduction.h"
#include "engine/sleeping/wide_scaler.h"

namespace clarivex {

/// Edge stage, detail stage, post filter and booster of enlarged rows; the scale is three halves, and all else is off.
RowStages PlanRowStages(const EngineSettings& settings, const DetailGains& gains, const PostFilter& filter);

/// The kernels in front of the scaler that leads, along the rows and down the columns.
PreStage PlanRowPreStage(const PreStageGains& gains);
PreStage PlanColumnPreStage(const PreStageGains& gains);

/// For a twofold scale of both axes. Post filters around one sample have no wide form and do not run.
WideStages PlanWideStages(const EdgeSettings& settings, const PostFilter& filter);

}  // namespace clarivex
