// Rows enlarged by 3/2 and sharpened, in groups that lie across the lanes: what is a column of the picture is a register, so
// the neighbours of a sample are other registers at the same lane, and no row end falls into the middle of one.
//
// A group walks along its rows in tiles. Each stage makes as many columns as the one before it allows and leaves them in a
// window, all of which stay in the first-level cache.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "simd/blocks.inl"
#include "simd/edge.inl"
#include "simd/fir.inl"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

constexpr int32_t tileColumns = 16;  // that lanes load and store at a time
constexpr int32_t cacheLine = 64;
constexpr int32_t sourceColumns = 32;  // read before the stages run; more would not stay in the first-level cache
constexpr int32_t windowColumns = 96;  // kept of each stage: what comes of those, and what the next stage still needs

/// A run of a stage's columns that begins at any one of them.
template <class Lanes, class Element>
class ColumnWindow {
    static constexpr int32_t column = blockLength<Lanes>;

public:
    explicit ColumnWindow(Element* memory) : elements(memory) {}

    static constexpr int32_t size = column * windowColumns;
    Element* End() const { return elements + size; }

    Element* At(int32_t x) const { return elements + (x - start) * column; }

    /// Forgets what is left of column x; `end` is the one behind the last. A few registers: calling memmove would take longer.
    void KeepFrom(int32_t x, int32_t end) {
        constexpr auto registerElements = static_cast<int32_t>(sizeof(typename Lanes::U8) / sizeof(Element));
        const Element* from = At(x);
        for (int32_t i = 0; i < (end - x) * column; i += registerElements)
            std::memcpy(elements + i, from + i, sizeof(typename Lanes::U8));
        start = x;
    }
    void StartAt(int32_t x) { start = x; }

private:
    Element* elements;
    int32_t start = 0;
};

/// Eight taps on columns of words, each a lower and an upper register.
template <class Lanes>
class ColumnSum {
public:
    explicit ColumnSum(const int16_t* values) {
        for (int32_t k = 0; k < 8; ++k) taps[k] = Lanes::Set(values[k]);
    }

    /// start plus the products' upper halves of eight columns.
    typename Lanes::Pair operator()(const int16_t* columns, typename Lanes::I16 start) const {
        return {Sum(columns, start), Sum(columns + Lanes::width, start)};
    }

private:
    typename Lanes::I16 Sum(const int16_t* words, typename Lanes::I16 start) const {
        const auto product = [&](int32_t k) {
            return Lanes::MulHigh(Lanes::Load(words + k * blockLength<Lanes>), taps[k]);
        };
        return SumByTurns<Lanes, 8>(start, product);
    }

    typename Lanes::I16 taps[8];
};

template <class Lanes, int bits>
typename Lanes::U8 FinishColumn(const typename Lanes::Pair& sum) {
    return Lanes::PackUnpacked({Lanes::template ShiftRight<bits>(sum.low), Lanes::template ShiftRight<bits>(sum.high)});
}

/// Every third column, of each of `pairs` pairs one.
template <class Lanes>
void EnlargePhase(const int16_t* from, const int16_t* taps, uint8_t* to, int32_t pairs) {
    const ColumnSum<Lanes> sum(taps);
    const auto rounding = Lanes::Set(8160);
    for (; pairs > 0; --pairs, from += 2 * blockLength<Lanes>, to += 3 * blockLength<Lanes>)
        Lanes::StoreBytes(to, FinishColumn<Lanes, 6>(sum(from, rounding)));
}

template <class Lanes>
typename Lanes::Pair Difference(const typename Lanes::Pair& a, const typename Lanes::Pair& b) {
    return {Lanes::SubWrap(a.low, b.low), Lanes::SubWrap(a.high, b.high)};
}

/// A column's step to the next one is the next one's step from the last.
template <class Lanes, class Decide>
void LimitColumnsWith(const uint8_t* from, uint8_t* to, int32_t count, const Decide& decide) {
    constexpr int32_t step = blockLength<Lanes>;
    auto centre = Lanes::Unpack(Lanes::LoadBytes(from));
    auto rise = Difference<Lanes>(centre, Lanes::Unpack(Lanes::LoadBytes(from - step)));
    for (; count > 0; --count, from += step, to += step) {
        const EdgeWindow<Lanes> window(from, step);
        const auto right = Lanes::Unpack(window.right);
        const auto nextRise = Difference<Lanes>(right, centre);
        Lanes::StoreBytes(to, LimitBlock<Lanes>(window, decide(window, centre, Difference<Lanes>(rise, nextRise))));
        rise = nextRise;
        centre = right;
    }
}

template <class Lanes>
void LimitColumns(const uint8_t* from, uint8_t* to, int32_t count, const EdgeLimits& limits) {
    WithEdges<Lanes>(limits, [&](const auto& decide) { LimitColumnsWith<Lanes>(from, to, count, decide); });
}

/// Seven taps, the same on both sides, on columns one after the other. A product of a tap serves the outputs on both sides, and
/// every column is read once: it is added to all outputs that are still open.
template <class Lanes>
class ColumnFilter {
public:
    static constexpr int32_t reach = 3;  // columns on either side that an output sees

    /// taps    from the middle one on
    /// memory  workBytes of it: for the taps, and for columns of which one half is done
    ColumnFilter(const int16_t* taps, uint8_t* memory)
        : tapWords(reinterpret_cast<int16_t*>(memory)),
          halves(tapWords + distinctTaps * Lanes::width),
          centred(reinterpret_cast<uint8_t*>(halves + windowColumns * Lanes::width)) {
        for (int32_t i = 0; i < distinctTaps; ++i) Lanes::Store(tapWords + i * Lanes::width, Lanes::Set(taps[i]));
    }

    static constexpr int32_t workBytes = (reach + 1 + 2 * windowColumns) * blockLength<Lanes>;

    /// Makes outputs x … end − 1, x being where the last call ended; the first time it begins three columns early.
    ///
    /// from  column x + 3, the first time column x − 3
    void Run(const uint8_t* from, uint8_t* to, int32_t x, int32_t end) {
        const Columns columns{from, x, begun ? 0 : openOutputs, end};
        begun = true;
        if constexpr (Lanes::sumsByHalves)
            RunHalves(columns, to);
        else
            RunPairs(columns, to);
    }

private:
    using I16 = typename Lanes::I16;

    static constexpr int32_t step = blockLength<Lanes>;  // from one column to the next
    static constexpr int32_t distinctTaps = reach + 1;
    static constexpr int32_t openOutputs = 2 * reach;

    /// Open outputs, the next one first.
    struct Sums {
        I16 next[openOutputs];
    };

    struct Columns {
        const uint8_t* from;
        int32_t first;
        int32_t early;  // columns before the first output
        int32_t end;
    };

    /// The taps in registers.
    class Taps {
    public:
        explicit Taps(const int16_t* words) {
            for (int32_t i = 0; i < distinctTaps; ++i)
                taps[i] = Lanes::InRegister(Lanes::Load(words + i * Lanes::width));
        }

        /// Adds a column to the open outputs and opens one that begins with `start`; returns the one that is done.
        [[gnu::always_inline]] I16 Add(I16 words, I16 start, Sums& open) const {
            const I16 p3 = Lanes::MulHigh(words, taps[3]);
            const I16 p2 = Lanes::MulHigh(words, taps[2]);
            const I16 p1 = Lanes::MulHigh(words, taps[1]);
            I16* next = open.next;
            const I16 finished = Lanes::AddWrap(next[0], p3);
            next[0] = Lanes::AddWrap(next[1], p2);
            next[1] = Lanes::AddWrap(next[2], p1);
            next[2] = Lanes::AddWrap(next[3], Lanes::MulHigh(words, taps[0]));
            next[3] = Lanes::AddWrap(next[4], p1);
            next[4] = Lanes::AddWrap(next[5], p2);
            next[5] = Lanes::AddWrap(start, p3);
            return Lanes::template ShiftRight<5>(finished);
        }

    private:
        I16 taps[distinctTaps];
    };

    /// Calls take(start) for the columns in turn, and give with what it returns for those behind the early ones.
    template <class Take, class Give>
    [[gnu::always_inline]] static void ForEachColumn(const Columns& columns, const Take& take, const Give& give) {
        const auto start = [](int32_t x) { return Lanes::Set(orderedBias.words[x & 1]); };
        for (int32_t i = 0; i < columns.early; ++i) take(start(columns.first + i));
        for (int32_t x = columns.first; x < columns.end; ++x) give(take(start(x)));
    }

    void RunPairs(const Columns& columns, uint8_t* to) {
        const Taps taps(tapWords);
        Sums low = lower, high = upper;
        const uint8_t* from = columns.from;
        const auto take = [&](I16 start) __attribute__((always_inline)) {
            const auto words = Lanes::Repeat(Lanes::Centre(Lanes::LoadBytes(from)));
            from += step;
            const I16 lowWords = taps.Add(words.low, start, low);
            return typename Lanes::Pair{lowWords, taps.Add(words.high, start, high)};
        };
        ForEachColumn(columns, take, [&](const typename Lanes::Pair& output) {
            Lanes::StoreBytes(to, Lanes::PackUnpacked(output));
            to += step;
        });
        lower = low;
        upper = high;
    }

    /// The lower half of all columns first, which has the registers to itself; it leaves them centred.
    void RunHalves(const Columns& columns, uint8_t* to) {
        const Taps taps(tapWords);
        int16_t* half = halves;
        const uint8_t* from = columns.from;
        uint8_t* kept = centred;
        Sums open = lower;
        const auto takeLow = [&](I16 start) __attribute__((always_inline)) {
            const auto bytes = Lanes::Centre(Lanes::LoadBytes(from));
            Lanes::StoreBytes(kept, bytes);
            from += step;
            kept += step;
            return taps.Add(Lanes::Repeat(bytes).low, start, open);
        };
        ForEachColumn(columns, takeLow, [&](I16 output) {
            Lanes::Store(half, output);
            half += Lanes::width;
        });
        lower = open;
        open = upper;
        half = halves;
        kept = centred;
        const auto takeHigh = [&](I16 start) __attribute__((always_inline)) {
            const auto bytes = Lanes::LoadBytes(kept);
            kept += step;
            return taps.Add(Lanes::Repeat(bytes).high, start, open);
        };
        ForEachColumn(columns, takeHigh, [&](I16 output) {
            Lanes::StoreBytes(to, Lanes::PackUnpacked({Lanes::Load(half), output}));
            half += Lanes::width;
            to += step;
        });
        upper = open;
    }

    int16_t* tapWords;
    int16_t* halves;
    uint8_t* centred;
    bool begun = false;
    Sums lower{}, upper{};
};

/// One group of rows on its way through the stages.
template <class Lanes>
class RowGroup {
public:
    static constexpr int32_t rows = blockLength<Lanes>;

    /// first  row of the band that the group begins with
    RowGroup(const RowBand& band, int32_t first, const RowFilters& filters, uint8_t* work)
        : band(band),
          filters(filters),
          count(std::min(rows, band.rows - first)),
          source(reinterpret_cast<int16_t*>(work)),
          enlarged(reinterpret_cast<uint8_t*>(source.End())),
          limited(enlarged.End()),
          filtered(limited.End()),
          cut(filtered.End()),
          filter(filters.post == nullptr ? noTaps : filters.post, cut + tileColumns * rows) {
        for (int32_t i = 0; i < rows; ++i) {
            in[i] = band.in[first + std::min(i, count - 1)];
            out[i] = band.out[first + std::min(i, count - 1)];
            cutIn[i] = cutOut[i] = cut + i * tileColumns;
        }
    }

    static constexpr int32_t workBytes = 3 * ColumnWindow<Lanes, uint8_t>::size +
                                         2 * ColumnWindow<Lanes, int16_t>::size + tileColumns * rows +
                                         ColumnFilter<Lanes>::workBytes;

    void Run() {
        source.StartAt(-tapsBefore);
        while (written < band.columns) {
            Read();
            Enlarge();
            Limit();
            Filter();
            Write();
            Forget();
        }
    }

private:
    static constexpr int32_t tapsBefore = 4;  // columns of the source that a sum reaches back
    static constexpr int32_t tapsBehind = 4;  // and ahead of its pair
    static constexpr int16_t noTaps[4] = {};

    bool SourceIsRead() const { return sourceEnd >= band.inColumns; }

    void Read() {
        const int32_t end = std::min(sourceEnd + sourceColumns, band.inColumns);
        for (int32_t x = sourceEnd; x < end; x += tileColumns) ReadTile(x, std::min(tileColumns, end - x));
        if (sourceEnd == 0) RepeatFirstColumn();
        sourceEnd = end;
        if (SourceIsRead()) EndSource();
    }

    void ReadTile(int32_t x, int32_t columns) {
        typename Lanes::U8 tile[tileColumns];
        if (columns == tileColumns) {
            constexpr int32_t tiles = cacheLine / tileColumns;
            const int32_t turn = x / tileColumns % tiles * (rows / tiles);
            for (int32_t i = 0; i < rows / tiles; ++i) __builtin_prefetch(in[turn + i] + x + cacheLine);
            Lanes::LoadColumns(in, x, tile);
        } else {
            for (int32_t i = 0; i < rows; ++i)
                std::memcpy(cut + i * tileColumns, in[i] + x, static_cast<size_t>(columns));
            Lanes::LoadColumns(cutIn, 0, tile);
        }
        for (int32_t i = 0; i < tileColumns; ++i) {  // nobody looks at those behind the last column
            const auto words = Lanes::Repeat(Lanes::Centre(tile[i]));
            Lanes::Store(source.At(x + i), words.low);
            Lanes::Store(source.At(x + i) + Lanes::width, words.high);
        }
    }

    void RepeatFirstColumn() {
        for (int32_t x = -tapsBefore; x < 0; ++x) std::copy_n(source.At(0), rows, source.At(x));
    }

    /// One more column is a copy of the last; behind it the far taps see mid-grey.
    void EndSource() {
        std::copy_n(source.At(sourceEnd - 1), rows, source.At(sourceEnd));
        std::fill_n(source.At(sourceEnd + 1), (tapsBehind - 1) * rows, static_cast<int16_t>(0));
        sourceEnd += tapsBehind;
    }

    void Enlarge() {
        const int32_t end = (sourceEnd - tapsBehind) / 2;
        for (int32_t phase = 0; phase < 3; ++phase)
            EnlargePhase<Lanes>(source.At(2 * pairs + phase - tapsBefore), filters.taps + 8 * phase,
                                enlarged.At(3 * pairs + phase), end - pairs);
        pairs = end;
        enlargedEnd = 3 * pairs;
    }

    void Limit() {
        constexpr int32_t reach = 3;
        const int32_t end = SourceIsRead() ? enlargedEnd : enlargedEnd - reach;
        const int32_t limits = filters.limits == nullptr ? 0 : EndOfLimits(band.width);
        const int32_t first = std::min(std::max(limitedEnd, edgeMarginColumns), end);
        const int32_t last = std::max(std::min(end, limits), first);
        CopyColumns(enlarged, limited, limitedEnd, first);
        if (first < last) LimitColumns<Lanes>(enlarged.At(first), limited.At(first), last - first, *filters.limits);
        CopyColumns(enlarged, limited, last, end);
        limitedEnd = end;
    }

    void Filter() {
        constexpr int32_t reach = ColumnFilter<Lanes>::reach;
        const int32_t end = SourceIsRead() ? limitedEnd : limitedEnd - reach;
        const FirSpan span = filters.post == nullptr ? FirSpan{} : filters.span;
        const int32_t first = std::min(std::max(filteredEnd, span.first), end);
        const int32_t last = std::max(std::min(end, span.end), first);
        CopyColumns(limited, filtered, filteredEnd, first);
        if (first < last) {
            const int32_t from = first == span.first ? first - reach : first + reach;
            filter.Run(limited.At(from), filtered.At(first), first, last);
        }
        CopyColumns(limited, filtered, last, end);
        filteredEnd = end;
    }

    using Bytes = ColumnWindow<Lanes, uint8_t>;
    using Words = ColumnWindow<Lanes, int16_t>;

    static void CopyColumns(const Bytes& from, const Bytes& to, int32_t first, int32_t end) {
        if (first < end) std::memcpy(to.At(first), from.At(first), static_cast<size_t>((end - first) * rows));
    }

    void Write() {
        for (; filteredEnd - written >= tileColumns && band.columns - written >= tileColumns; written += tileColumns)
            WriteTile(tileColumns);
        if (SourceIsRead() && written < band.columns) {
            WriteTile(band.columns - written);
            written = band.columns;
        }
    }

    void WriteTile(int32_t columns) {
        const uint8_t* from = filtered.At(written);
        if (columns == tileColumns && count == rows) return Lanes::StoreColumns(out, written, from);
        Lanes::StoreColumns(cutOut, 0, from);
        for (int32_t i = 0; i < count; ++i)
            std::memcpy(out[i] + written, cut + i * tileColumns, static_cast<size_t>(columns));
    }

    void Forget() {
        if (SourceIsRead()) return;
        source.KeepFrom(2 * pairs - tapsBefore, sourceEnd);
        enlarged.KeepFrom(limitedEnd - 3, enlargedEnd);
        limited.KeepFrom(filteredEnd - 3, limitedEnd);
        filtered.KeepFrom(written, filteredEnd);
    }

    const RowBand& band;
    const RowFilters& filters;
    int32_t count;  // of the rows that belong to the band; the last one stands for those that do not
    Words source;
    Bytes enlarged;
    Bytes limited;
    Bytes filtered;
    uint8_t* cut;
    const uint8_t* in[rows];
    uint8_t* out[rows];
    const uint8_t* cutIn[rows];
    uint8_t* cutOut[rows];

    ColumnFilter<Lanes> filter;

    // How far each stage has come.
    int32_t sourceEnd = 0;
    int32_t pairs = 0;
    int32_t enlargedEnd = 0;
    int32_t limitedEnd = 0;
    int32_t filteredEnd = 0;
    int32_t written = 0;
};

template <class Lanes>
void EnlargeRows(const RowBand& band, const RowFilters& filters, uint8_t* work) {
    static_assert(RowGroup<Lanes>::workBytes <= rowWorkBytes);
    for (int32_t first = 0; first < band.rows; first += RowGroup<Lanes>::rows)
        RowGroup<Lanes>(band, first, filters, work).Run();
}

}  // namespace
}  // namespace clarivex
