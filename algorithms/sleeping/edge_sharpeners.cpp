// Derives the coefficients of a pass and takes its plane apart into strips.
#include "algorithms/sleeping/edge_sharpeners.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "algorithms/sleeping/detail_kernels.h"

namespace clarivex {
namespace {

constexpr float narrowScale = 1.0F;
constexpr float wideRowScale = 256.0F;
constexpr float widePlainScale = 1.0F;

/// run(strip) for each strip of up to 16 rows.
template <class Run>
void ForEachStripOfRows(const Plane& plane, Run run) {
    for (int32_t y = 0; y < plane.height; y += stripSize) {
        const int32_t rows = std::min(stripSize, plane.height - y);
        run(Plane{plane.Row(y), plane.width, rows, plane.stride});
    }
}

/// run(strip) for each strip of 16 columns. The last one takes in spare columns, which the passes along rows read.
template <class Run>
void ForEachStripOfColumns(const Plane& plane, Run run) {
    for (int32_t x = 0; x < plane.width; x += stripSize)
        run(Plane{plane.data + x, stripSize, plane.height, plane.stride});
}

/// Values of the scalar form of the knee pass, in full width.
struct ScalarGains {
    explicit ScalarGains(const SharpenCoefficients& c)
        : narrowBase(c.narrowBase),
          narrowExtra(c.narrowExtra),
          narrowKnee(std::min(c.narrowKnee, 16383)),
          wideBase(int64_t{c.wideBase} << 8),
          wideExtra(int64_t{c.wideExtra} << 8),
          wideKnee(std::min(c.wideKnee >> 4, 16383)) {}

    int64_t narrowBase;
    int64_t narrowExtra;
    int64_t narrowKnee;
    int64_t wideBase;
    int64_t wideExtra;
    int64_t wideKnee;
};

/// The sharpened sample before it is limited to 8 bits; s points at the 4th of the 7 unfiltered samples.
int64_t SharpenUnlimited(const uint8_t* s, const ScalarGains& gains, int32_t rounding) {
    const int64_t narrow = NarrowMeasure(s[-1], s[0], s[1]);
    const int64_t wide = 16 * int64_t{WideMeasure(s[-3], s[-2], s[-1], s[0], s[1], s[2], s[3])};
    const int64_t wideDetail =
        ((wide * gains.wideBase) >> 16) + WideCore((wide * gains.wideExtra) >> 16, gains.wideKnee);
    const int64_t narrowDetail = gains.narrowBase * narrow + WideCore(gains.narrowExtra * narrow, gains.narrowKnee);
    return (16 * s[0] + wideDetail + narrowDetail + rounding) >> 4;
}

/// Unlimited values of the columns just walked over, by column modulo 8.
class RecentValues {
public:
    int64_t& At(int32_t x) { return values[static_cast<size_t>(x) % values.size()]; }

    /// Column x drawn towards its neighbours by as much as the columns x − 2 … x + 2 were clipped together.
    uint8_t Soften(int32_t x) {
        int64_t clipped = 0;
        for (int32_t i = x - 2; i <= x + 2; ++i) clipped += std::abs(At(i) - SaturateSample(At(i)));
        const int64_t weight = std::min<int64_t>(clipped, 170);
        return SaturateSample((512 * At(x) + weight * (At(x - 1) - 2 * At(x) + At(x + 1))) >> 9);
    }

private:
    std::array<int64_t, 8> values{};
};

/// One row of the scalar form: sharpens column x and, two columns behind, softens what was clipped.
void SharpenRowScalar(uint8_t* row, int32_t width, const ScalarGains& gains, bool oddRow) {
    constexpr int32_t softenDelay = 2;
    std::array<uint8_t, 2 * wideReach + 1> window;
    std::array<uint8_t, wideReach> kept;
    std::copy_n(row, wideReach, kept.begin());
    // Of 16, by column within a row: no two neighbours are rounded alike.
    const int32_t roundingEven = oddRow ? 14 : 2;
    const int32_t roundingOdd = oddRow ? 6 : 10;
    RecentValues values;
    for (int32_t x = wideReach; x < width - wideReach; ++x) {
        std::copy(kept.begin(), kept.end(), window.begin());
        std::copy_n(row + x, wideReach + 1, window.begin() + wideReach);
        std::copy_n(window.begin() + 1, wideReach, kept.begin());

        values.At(x) = SharpenUnlimited(window.data() + wideReach, gains, (x & 1) == 0 ? roundingEven : roundingOdd);
        row[x] = SaturateSample(values.At(x));
        if (x - softenDelay >= wideReach + softenDelay) row[x - softenDelay] = values.Soften(x - softenDelay);
    }
}

void SharpenStripScalar(const Plane& strip, const ScalarGains& gains) {
    for (int32_t y = 0; y < strip.height; ++y) SharpenRowScalar(strip.Row(y), strip.width, gains, (y & 1) != 0);
}

bool IsEitherActive(const SharpenParams& narrow, const SharpenParams& wide) {
    return IsSharpenActive(narrow) || IsSharpenActive(wide);
}

}  // namespace

void SharpenRowsNarrow(const Plane& plane, const SharpenParams& params) {
    if (!IsSharpenActive(params)) return;
    const SharpenCoefficients coefficients = DeriveNarrowCoefficients(params);
    ForEachStripOfRows(plane, [&](const Plane& strip) { NarrowDetailRows(strip, coefficients); });
}

void SharpenColumnsNarrow(const Plane& plane, const SharpenParams& params) {
    if (!IsSharpenActive(params)) return;
    const SharpenCoefficients coefficients = DeriveNarrowCoefficients(params);
    ForEachStripOfColumns(plane, [&](const Plane& strip) { NarrowDetailColumns(strip, coefficients); });
}

void SharpenRowsGated(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide, RowDither dither) {
    if (!IsEitherActive(narrow, wide)) return;
    const SharpenCoefficients coefficients = DeriveSharpenCoefficients(narrow, wide, narrowScale, wideRowScale);
    ForEachStripOfRows(plane, [&](const Plane& strip) { GatedDetailRows(strip, coefficients, dither); });
}

void SharpenColumnsGated(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide) {
    if (!IsEitherActive(narrow, wide)) return;
    const SharpenCoefficients coefficients = DeriveSharpenCoefficients(narrow, wide, narrowScale, widePlainScale);
    ForEachStripOfColumns(plane, [&](const Plane& strip) { GatedDetailColumns(strip, coefficients); });
}

void SharpenRowsKnee(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide, bool scalarForm,
                     RowDither dither, const StripFilter* filter) {
    const bool active = IsEitherActive(narrow, wide);
    const float wideScale = scalarForm ? widePlainScale : wideRowScale;
    const SharpenCoefficients coefficients = DeriveSharpenCoefficients(narrow, wide, narrowScale, wideScale);
    ForEachStripOfRows(plane, [&](const Plane& strip) {
        if (active && scalarForm)
            SharpenStripScalar(strip, ScalarGains(coefficients));
        else if (active)
            KneeDetailRows(strip, coefficients, dither);
        if (filter != nullptr)
            DetailFir(strip, filter->taps, filter->evenFilterPasses, filter->kernels, filter->scratch);
    });
}

void SharpenColumnsPlain(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide) {
    if (!IsEitherActive(narrow, wide)) return;
    const SharpenCoefficients coefficients = DeriveSharpenCoefficients(narrow, wide, narrowScale, widePlainScale);
    ForEachStripOfColumns(plane, [&](const Plane& strip) { KneeDetailColumns(strip, coefficients); });
}

}  // namespace clarivex
