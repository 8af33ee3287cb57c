// Enhancement of luma at its own size: a vertical sharpener and a short filter along the row in one walk.
#pragma once

#include <cstdint>

#include "algorithms/detail_fir.h"
#include "algorithms/readable_row.h"
#include "algorithms/sharpen_params.h"
#include "algorithms/slack_row.h"

namespace clarivex {

/// Working rows of UnscaledWalk, kept between frames.
struct UnscaledScratch {
    SlackRow<uint8_t> sharpened;
    SlackRow<int16_t> words;
    SlackRow<uint8_t> rowCopies[3];
    SlackRow<uint8_t> finished;  ///< a row on its way to a sink
};

/// Enhances luma row by row; with a single tap and inactive gains rows are copied instead.
///
/// edges    the first and the last row are copied, the first four columns get the vertical sharpener only, and so does
///          the last group of four, whose samples of 128 … 254 come out one higher. Pictures narrower than 9 are left.
class UnscaledWalk {
public:
    /// taps     post filter, of which entries 4 … 11 count.
    /// column   gains of the vertical sharpener; its knee does not matter.
    UnscaledWalk(const SourcePlane& source, const DetailTaps& taps, const SharpenParams& column,
                 UnscaledScratch& scratch, const KernelTable& kernels);

    /// False for a picture that is left.
    bool WritesRows() const;

    /// Makes row y of the result.
    ///
    /// out  not in the source; written up to the width rounded up to even
    void MakeRow(int32_t y, uint8_t* out) const;

private:
    /// Columns of the walk: filtered up to `end`, stored up to `stored`.
    struct Columns {
        int32_t read;
        int32_t end;
        int32_t stored;
    };

    /// A filter of eight taps, or of five where only the inner ones are set: the others would add nothing.
    struct RowFilter {
        KernelTable::FirRow run;
        DetailTaps taps;
        size_t firstTap;
    };

    static Columns ColumnsOf(int32_t width);
    static RowFilter ChooseFilter(const DetailTaps& taps, const KernelTable& kernels);
    const uint8_t* SourceRow(int32_t y) const;
    void RaiseLastGroup(const uint8_t* sharpened, uint8_t* out) const;

    SourcePlane source;
    const KernelTable& kernels;
    Columns columns;
    RowFilter filter;
    int16_t gain;
    bool copies;
    uint8_t* sharpened;
    int16_t* words;
    uint8_t* rowCopies[3];
};

}  // namespace clarivex
