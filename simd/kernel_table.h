// The pixel kernels as a table of function pointers, one table an instruction set, and its choice at run time.
//
// Every kernel gives the same bytes in every table. Rows are plain pointers to samples. Unless a kernel says otherwise
// it reads and writes exactly the samples that its counts name, and out may not overlap what it reads. A row said to be
// *slack* may be read 64 samples before its start, and read and written up to 256 samples behind its end; what is there
// does not change the result.
//
// Formulas are in 16 bits that wrap. sat8 limits to 0 … 255, sat16 to −32768 … 32767; hi(a, b) is the upper half of the
// 32-bit product; core(x, T) is x − T above T, x + T below −T, else 0.
#pragma once

#include <cstdint>
#include <span>

namespace clarivex {

/// Samples that a slack row keeps before its first and behind its last sample.
constexpr int32_t slackBefore = 64;
constexpr int32_t slackBehind = 256;

/// Constants that alternate by column (dither, chroma gains) have a period of 4 columns; a pattern repeats it often enough
/// for a block that starts at any column.
constexpr int32_t patternPeriod = 4;
constexpr int32_t patternLength = 64 + patternPeriod;

/// Values of the full edge limiter; its formulas name them by their letters.
struct EdgeLimits {
    int16_t gain = 29;
    int16_t deadZone = 29;     ///< T, 0 … 32767
    int16_t outerWeight = 77;  ///< K
    int16_t slope = 800;       ///< Q
    int16_t offset = 0;        ///< O
    int16_t margin = 0;        ///< M, up to 255; below 0 the limits move inwards by it
};

/// Columns of a filtered row: it has `columns`, of which the filter makes first … end − 1; the others are copied.
struct FirSpan {
    int32_t columns;
    int32_t first;
    int32_t end;
};

/// Where lightingVotes writes.
struct VoteRows {
    uint8_t* level;
    uint8_t* voteA;
    uint8_t* voteB;
    uint8_t* voteC;
};

/// A curve on samples in 16-bit fixed point: t = hi(hi(hi(q, c3)·2 + c2, q)·4 + c1, q) with q = 128·Y.
struct LumaCurve {
    int16_t c3 = 0;
    int16_t c2 = 0;
    int16_t c1 = 8192;
};

/// A row's curve in the output stages, and what is added to it by column, in sixteenths.
struct LumaTone {
    LumaCurve curve;
    const int16_t* pattern;
    const uint8_t* table = nullptr;  ///< what tabulateLuma made of the curve, where a kernel table has that
};

/// Bytes of a curve's table.
constexpr int32_t lumaTableBytes = 512;

/// A chroma row's gains, 8192 for 1, and what is added to it, in sixteenths, both by column.
struct ChromaTone {
    const int16_t* gains;
    const int16_t* pattern;
};

/// Noise rows have a period of 256 columns and repeat their first 64 behind it, so that a block never wraps inside.
constexpr int32_t noisePeriod = 256;
constexpr int32_t noiseRepeated = 64;

/// Noise of a row in sixteenths: column x takes entry (firstColumn + x) mod noisePeriod. firstColumn is a multiple of 8,
/// 0 … 248.
struct GrainRow {
    const int16_t* words;
    int32_t firstColumn;
};

/// What a packed row goes through.
struct PackedTone {
    LumaTone luma;
    ChromaTone chroma;
    GrainRow lumaGrain;
    GrainRow chromaGrain;
};

/// What the overlay does to a row: the share of the video that it keeps, 0 … 32767 (a slack row), what it adds, and the
/// rounding of what was kept, in eighths and by column. keep and terms have one entry a column.
struct OverlayRow {
    const int16_t* keep;
    const uint8_t* terms;
    const int16_t* dither;
};

/// Rows of a picture for enlargeRows, from source to target.
struct RowBand {
    const uint8_t* const* in;  ///< each of inColumns samples
    uint8_t* const* out;       ///< each gets exactly `columns`
    int32_t rows;
    int32_t inColumns;  ///< a multiple of 8, at least 8
    int32_t width;      ///< of an enlarged row, up to `columns`
    int32_t columns;    ///< up to 3/2 of inColumns
};

/// What enlargeRows does to a row.
struct RowFilters {
    const int16_t* taps;       ///< eight for each of the three phases
    const EdgeLimits* limits;  ///< null for no limiter
    const int16_t* post;       ///< seven taps, the same on both sides, from the middle one on; null for no filter
    FirSpan span;              ///< of the filter: `first` at least 3, `end` at most width − 3
};

/// Working memory of enlargeRows at any width.
constexpr int32_t rowWorkBytes = 48 * 1024;

struct KernelTable {
    const char* name;
    const char* variant = "";  ///< tells tables of one name apart

    /// Rows that enlargeRows makes at a time, up to 64: fewer cost as much.
    int32_t rowGroup;

    /// Rows enlarged by 3/2, their edges limited and filtered, each a row on its own. X(b) being the word 256·s + (s mod 256),
    /// s = b − 128 raised by one from 128 on and limited to 127, and p[x] = X(in[x]); left of a row p is that of its first
    /// sample, right of it once more that of the last one, then 0:
    ///   out[3n + j] = sat8((Σk hi(taps[8j + k], p[2n + j + k − 4]) + 8160) >> 6)
    /// then limitEdges on the row's `width` columns and fir7 on filters.span, where they are asked for. Rows of input and
    /// output may not overlap. work: rowWorkBytes for the kernel's use, best at a multiple of 64.
    void (*enlargeRows)(const RowBand& band, const RowFilters& filters, uint8_t* work);

    /// Five taps along a row: out[x] = sat8((Σ hi(taps[k], X(in[x + k − before])) + bias) >> 5), bias 4088 on even
    /// and 4072 on odd columns, X as in enlargeRows; before is 2. first is at least `before`. in is a slack row whose
    /// samples behind its end count as far as taps reach them; words is a slack row of `columns` words for the kernel's
    /// use; out gets exactly `columns`.
    using FirRow = void (*)(const uint8_t* in, uint8_t* out, const FirSpan& span, const int16_t* taps, int16_t* words);
    FirRow fir5;

    /// Words 257·b − 32768 for enlargeColumns. words is a slack row.
    void (*expandRow)(const uint8_t* row, int16_t* words, int32_t width);

    /// One output row from eight rows of words: out = sat8((Σk hi(taps[k], rows[k]) + 8192) >> 6), every sum saturating in
    /// the order of k, then the constant. rows are slack rows.
    void (*enlargeColumns)(const int16_t* const* rows, const int16_t* taps, uint8_t* out, int32_t width);

    /// Chroma along a row, three outputs for each pair of inputs: p[2n] pulled towards p[2n − 1], p[2n] towards p[2n + 1],
    /// p[2n + 1] towards p[2n + 2], by weights[j] / 256 each, 0 … 255, rounded down. in is a slack row, but one
    /// sample beyond both ends counts; out gets exactly `count`.
    void (*enlargeChromaRow)(const uint8_t* in, const int16_t* weights, uint8_t* out, int32_t count);

    /// Chroma down the columns: rows 0 … 3 around a pair give three rows: (11·r0 + 53·r1) >> 6, (r1 + r2) >> 1,
    /// (53·r2 + 11·r3) >> 6.
    void (*enlargeChromaColumns)(const uint8_t* const* rows, uint8_t* const* outs, int32_t width);

    /// Vertical sharpening: out = sat8(c + ((gain·(2c − above − below) + 4) >> 4)) in 16 bits.
    void (*sharpenColumns)(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* out, int32_t width,
                           int16_t gain);

    /// What `pairs` pairs of columns count in the lighting histogram. With (a, b) a pair of luma samples, d and e the
    /// distances of its first and second chroma sample from 128: level = (a + b) >> 1, and in full width
    ///   voteA = sat8(level + ((−320·d − 160·e) >> 8))
    ///   voteB = max(level, sat8(level + (730·d >> 8))), voteC = max(level, sat8(level + (870·e >> 8)))
    void (*lightingVotes)(const uint8_t* luma, const uint8_t* firstChroma, const uint8_t* secondChroma, int32_t pairs,
                          const VoteRows& votes);

    /// Splits a row of packed pixel pairs (Y0 U Y1 V) into planes; u and v may be null together.
    void (*splitPackedRow)(const uint8_t* packed, uint8_t* luma, uint8_t* u, uint8_t* v, int32_t pairs);

    /// Makes a table of a curve, for toneLuma to look up. Null where that works its curve out for each sample.
    void (*tabulateLuma)(const LumaCurve& curve, uint8_t* table) = nullptr;

    /// out = sat8((curve(Y) + pattern + noise) >> 4).
    void (*toneLuma)(const uint8_t* in, uint8_t* out, int32_t width, const LumaTone& tone, const GrainRow& grain);

    /// The same under an overlay: out = sat8((hi(curve(Y) + pattern + noise, keep) + dither) >> 3) + term, saturating.
    void (*toneLumaOverlay)(const uint8_t* in, uint8_t* out, int32_t width, const LumaTone& tone, const GrainRow& grain,
                            const OverlayRow& overlay);

    /// out = sat8((hi(128·C, gain) + pattern) >> 4).
    void (*toneChroma)(const uint8_t* in, uint8_t* out, int32_t width, const ChromaTone& tone);

    /// The same with noise, for interleaved chroma samples.
    void (*toneChromaNoise)(const uint8_t* in, uint8_t* out, int32_t width, const ChromaTone& tone,
                            const GrainRow& grain);

    /// The same under an overlay, as toneLumaOverlay.
    void (*toneChromaOverlay)(const uint8_t* in, uint8_t* out, int32_t width, const ChromaTone& tone,
                              const GrainRow& grain, const OverlayRow& overlay);

    /// Interleaves the chroma of two planes, each pulled a quarter of the way to its neighbour row by two rounding
    /// averages: out[2i] from the first plane, out[2i + 1] from the second. rows: first, its neighbour, second, its
    /// neighbour. out gets exactly 2 · width samples.
    void (*blendChromaRows)(const uint8_t* const* rows, uint8_t* out, int32_t width);

    /// A row of packed pixel pairs: luma as toneLuma makes it, by turns with chroma as blendChromaRows and toneChromaNoise do.
    /// width is even; out gets exactly 2 · width samples.
    void (*tonePackedRow)(const uint8_t* luma, const uint8_t* const* chroma, uint8_t* out, int32_t width,
                          const PackedTone& tone);

    /// out[2i] = a[i], out[2i + 1] = b[i].
    void (*interleave)(const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t width);

    /// a[i] = in[2i], b[i] = in[2i + 1].
    void (*deinterleave)(const uint8_t* in, uint8_t* a, uint8_t* b, int32_t width);

    /// Paints a row of coverage in one colour over pixels of 4 bytes (T, Y, U, V), in place: with coverage m, per byte c
    /// of a pixel and word of the colour, P = hi(64·m, colour) + (4095, 264, 2056, 2056) and
    /// c = sat8((((c − (256, 16, 128, 128)) · (P of T) >> 8) + P) >> 4). colour: 64 times −255 … 255 for each of T, Y, U, V.
    void (*paintCoverage)(const uint8_t* coverage, const int16_t* colour, uint8_t* pixels, int32_t width);

    /// Turns `groups` times 8 such pixels into groups of 24 bytes. With a = 257·T >> 1, the mean of the two for a pair:
    /// 8 luma terms sat8(Y + ((hi(−2048, a) + dither) >> 6)), 8 keep factors sat8((hi(32640, a) + 64 − dither) >> 6), and
    /// for 4 pairs U and V terms sat8(average + ((hi(−32768, a) + rounding) >> 7)), their averages rounded up and the
    /// roundings 32, 96, 96, 32 by byte. dither is 48 on even and 16 on odd columns, in an odd row the other way round.
    void (*packTileRow)(const uint8_t* pixels, uint8_t* tileGroups, int32_t groups, bool oddRow);

    // ---- Kernels that the plug-in never calls: for engine settings that only other programs make ----

    /// Full edge limiter: columns 8 … 8 + 8·((width − 16) >> 3) − 1, the others are copied. Slack rows, not in place.
    /// With c a sample, l and r the two beside it, l3 and r3 the two three columns away, a = c − l3 and b = c − r3:
    ///   sharpened = sat8(c + ((core(gain·(2c − l − r), T) + 16) >> 5))
    ///   rise = hi(sat16(max(a, b)·K − 64·(a + b)), −Q) + O, fall = hi(sat16(min(a, b)·K − 64·(a + b)), Q) + O
    ///   upper = sat8(max(l, c, r) + max(rise, 0) + M), lower = sat8(min(l, c, r) − max(fall, 0) − M)
    ///   out = min(max(sharpened, lower), upper)
    /// Only max(a, b)·K and min(a, b)·K wrap inside a sat16, and the sums inside the last two sat8 do not.
    void (*limitEdges)(const uint8_t* in, uint8_t* out, int32_t width, const EdgeLimits& limits);

    /// Seven taps along a row, as fir5; before is 3.
    FirRow fir7;

    /// Eight taps along a row, as fir5; before is 4.
    FirRow fir8;

    /// Sixteen taps that are the same on both sides of the place between in[x − 1] and in[x]: out[x] = sat8((Σj
    /// hi(64·(in[x − 8 + j] + in[x + 7 − j]), taps[j]) + rounding) >> 3), j = 0 … 7. Rows as in fir5; first is at least 8.
    void (*firEven)(const uint8_t* in, uint8_t* out, const FirSpan& span, const int16_t* taps, int32_t rounding);

    /// out = row pulled towards another row by weight / 32768, 0 … 32767, rounded down.
    void (*pullRow)(const uint8_t* row, const uint8_t* towards, int16_t weight, uint8_t* out, int32_t width);

    /// Two outputs for each input: out[2x] = sat8((Σk taps[k]·in[x + k − 4] + 8192) >> 14), out[2x + 1] the same with the
    /// taps mirrored and in[x + k − 3]; sums of 32 bits. Slack rows, but four samples beyond both ends of in count; width
    /// inputs.
    void (*doubleRow)(const uint8_t* in, const int16_t* taps, uint8_t* out, int32_t width);

    // The next kernels take and give wide words: 8-bit samples times 64, 0 … 65535, less 32768. Their rows of words are
    // slack rows. Sums of products have 32 bits and wrap, results are limited to the range of wide words.

    /// doubleRow to wide words: the sums plus 128 are shifted by 8.
    void (*doubleRowWide)(const uint8_t* in, const int16_t* taps, int16_t* out, int32_t width);

    /// One output row from eight rows: out = (Σk taps[k]·rows[k] + 8192) >> 14.
    void (*doubleColumnsWide)(const int16_t* const* rows, const int16_t* taps, int16_t* out, int32_t width);

    /// The full edge limiter on wide words, all columns. rows: the samples c, their two neighbours l and r, and their two
    /// neighbours three away, l3 and r3. In 32 bits but for what sat16 says, above = sat16(max(l3, r3) − c) and
    /// below = sat16(min(l3, r3) − c):
    ///   sharpened = (core(gain·sat16(sat16(c − l) + sat16(c − r)), 64·T) + 32·c + 16) >> 5
    ///   rise = (E(above, below)·(−Q) >> 16) + 64·O, fall = (E(below, above)·Q >> 16) + 64·O,
    ///     E(near, far) = 64·near + (64 − K)·far, limited to −2²³ … 2²³ − 1
    ///   upper = sat16(max(l, c, r) + sat16(max(sat16(rise), 0) + sat16(64·M))), lower = sat16(min(l, c, r) −
    ///     sat16(max(sat16(fall), 0) + sat16(64·M)))
    ///   out = min(max(sharpened, lower), upper)
    void (*limitEdgesWide)(const int16_t* const* rows, int16_t* out, int32_t width, const EdgeLimits& limits);

    /// One output row from sixteen rows: out = (Σk taps[k]·rows[k]) >> 13.
    void (*firWide)(const int16_t* const* rows, const int16_t* taps, int16_t* out, int32_t width);

    /// Wide words to samples: out = min(sample >> 6, 255); out gets exactly `width`.
    void (*narrowRow)(const int16_t* words, uint8_t* out, int32_t width);
};

extern const KernelTable scalarKernels;
extern const KernelTable sse2Kernels;
extern const KernelTable avx2Kernels;
extern const KernelTable avx512Kernels;
extern const KernelTable avx512VbmiKernels;

/// What processor and operating system can run.
struct InstructionSets {
    bool sse2 = false;
    bool avx2 = false;
    bool avx512 = false;
    bool avx512vbmi = false;
};

/// The widest table that `sets` allows.
const KernelTable& SelectKernels(const InstructionSets& sets);

/// Whether `table` may run under `sets`.
bool CanRun(const KernelTable& table, const InstructionSets& sets);

/// All tables, plainest first.
std::span<const KernelTable* const> AllKernels();

}  // namespace clarivex
