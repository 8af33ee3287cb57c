// The scalers once more, stage after stage over the whole picture in plain integers: what the strips are compared with.
#pragma once

#include "engine/column_scaler.h"
#include "engine/row_scaler.h"
#include "engine/sleeping/wide_scaler.h"

namespace clarivex {

/// Luma along the rows by stages.scale. The target has room for 12 columns, or 16, for every 8 of the source.
void PlainScaleRows(const Plane& target, const SourcePlane& source, const RowStages& stages);

/// Luma down the columns, spare ones up to a multiple of 8 included, which a pass along the rows reads. The target has
/// 3 · height / 2 rows.
void PlainScaleColumns(const Plane& target, const SourcePlane& source, const ColumnStages& stages);

/// Luma on both axes through wide samples.
void PlainScaleBothTwice(const Plane& target, const PlaneView& source, const WideStages& stages);

}  // namespace clarivex
