// Settings and gains of a frame turned into what the scalers are to run.
#pragma once

#include "engine/column_scaler.h"
#include "engine/enhancement_engine.h"
#include "engine/post_filter.h"
#include "engine/row_scaler.h"

namespace clarivex {

/// cross  gains across the rows, for the axis that is not scaled; a cleared record otherwise.
RowStages PlanRows(const EnhancementEngine& engine, const PostFilter& filter, const SharpenParams& cross);

ColumnStages PlanColumns(const EnhancementEngine& engine);

}  // namespace clarivex
