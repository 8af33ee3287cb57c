// Settings and gains of a frame turned into what the scalers are to run.
#pragma once

#include "engine/column_scaler.h"
#include "engine/enhancement_engine.h"
#include "engine/post_filter.h"
#include "engine/row_scaler.h"
#include "engine/wide_scaler.h"

namespace clarivex {

/// cross  gains across the rows, for the axis that is not scaled; a cleared record otherwise.
RowStages PlanRows(const EnhancementEngine& engine, const PostFilter& filter, const SharpenParams& cross);

/// The same for a twofold scale, with taps from the engine's first response.
RowStages PlanTwofoldRows(const EnhancementEngine& engine, const PostFilter& filter);

/// For a twofold scale of both axes. Post filters around one sample have no wide form and do not run.
WideStages PlanWide(const EnhancementEngine& engine, const PostFilter& filter);

ColumnStages PlanColumns(const EnhancementEngine& engine);

}  // namespace clarivex
