// Fills a kernel table with one set of lanes. Each instruction set's source file includes this after its lanes.
#pragma once

#include "simd/analysis.inl"
#include "simd/chroma.inl"
#include "simd/edge.inl"
#include "simd/enlarge.inl"
#include "simd/fir.inl"
#include "simd/kernel_table.h"
#include "simd/lanes.h"
#include "simd/overlay.inl"
#include "simd/rows.inl"
#include "simd/sleeping/even_fir.inl"
#include "simd/sleeping/twofold.inl"
#include "simd/tone.inl"

namespace clarivex {
namespace {

/// RowLanes are those of the kernels that enlarge along rows, which get nothing out of the widest lanes.
template <KernelLanes Lanes, KernelLanes RowLanes = Lanes>
requires TripleLanes<RowLanes>
constexpr KernelTable MakeTable(const char* name) {
    return {
        .name = name,
        .variant = "",
        .rowGroup = RowGroup<RowLanes>::rows,
        .enlargeRows = EnlargeRows<RowLanes>,
        .fir5 = FirRow<Lanes, 2, 5>,
        .expandRow = ExpandRow<Lanes>,
        .enlargeColumns = EnlargeColumns<Lanes>,
        .enlargeChromaRow = EnlargeChromaRow<RowLanes>,
        .enlargeChromaColumns = EnlargeChromaColumns<Lanes>,
        .sharpenColumns = SharpenColumns<Lanes>,
        .lightingVotes = LightingVotes<Lanes>,
        .splitPackedRow = SplitPackedRow<Lanes>,
        .tabulateLuma = nullptr,
        .toneLuma = ToneLuma<Lanes>,
        .toneLumaOverlay = ToneLumaOverlay<Lanes>,
        .toneChroma = ToneChroma<Lanes>,
        .toneChromaNoise = ToneChromaNoise<Lanes>,
        .toneChromaOverlay = ToneChromaOverlay<Lanes>,
        .blendChromaRows = BlendChromaRows<Lanes>,
        .tonePackedRow = TonePackedRow<Lanes>,
        .interleave = Interleave<Lanes>,
        .deinterleave = Deinterleave<Lanes>,
        .paintCoverage = PaintCoverage<Lanes>,
        .packTileRow = PackTileRow<Lanes>,
        .limitEdges = LimitEdges<Lanes>,
        .fir7 = FirRow<Lanes, 3, 7>,
        .fir8 = FirRow<Lanes, 4, 8>,
        .firEven = FirEven<Lanes>,
        .pullRow = PullRow<Lanes>,
        .doubleRow = DoubleRow<Lanes>,
        .doubleRowWide = DoubleRowWide<Lanes>,
        .doubleColumnsWide = DoubleColumnsWide<Lanes>,
        .limitEdgesWide = LimitEdgesWide<Lanes>,
        .firWide = FirWide<Lanes>,
        .narrowRow = NarrowRow<Lanes>,
    };
}

}  // namespace
}  // namespace clarivex
