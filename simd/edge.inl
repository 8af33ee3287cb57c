// The full edge limiter: lets a sharpened value pass the local extremes only where the wider neighbourhood shows an edge.
#pragma once

#include <cstdint>
#include <cstring>

#include "simd/blocks.inl"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

/// x − T above T, x + T below −T, else 0.
template <class Lanes>
typename Lanes::I16 Core(typename Lanes::I16 x, typename Lanes::I16 deadZone, typename Lanes::I16 minusDeadZone) {
    return Lanes::SubWrap(x, Lanes::Min(Lanes::Max(x, minusDeadZone), deadZone));
}

/// A sample block and its neighbours, one and three columns away; `step` is from one column to the next.
template <class Lanes>
struct EdgeWindow {
    typename Lanes::U8 centre, left, right, left3, right3;

    EdgeWindow(const uint8_t* p, int32_t step)
        : centre(Lanes::LoadBytes(p)),
          left(Lanes::LoadBytes(p - step)),
          right(Lanes::LoadBytes(p + step)),
          left3(Lanes::LoadBytes(p - 3 * step)),
          right3(Lanes::LoadBytes(p + 3 * step)) {}
};

/// What both forms below work out of a window: the sharpened samples c + ((core(g·L, T) + 16) >> 5), L = 2c − left − right,
/// and how far the wider neighbourhood lets them go above the local maximum and below the local minimum.
template <class Lanes>
struct EdgeDecision {
    typename Lanes::U8 sharpened, up, down;

    typename Lanes::U8 Upper(typename Lanes::U8 most) const { return Lanes::AddBytes(most, up); }
    typename Lanes::U8 Lower(typename Lanes::U8 least) const { return Lanes::SubBytes(least, down); }
};

/// With a margin below 0 the limits may also stand inside the local extremes: of each pair one is 0.
template <class Lanes>
struct InwardEdgeDecision {
    typename Lanes::U8 sharpened, up, down, upBack, downBack;

    typename Lanes::U8 Upper(typename Lanes::U8 most) const {
        return Lanes::SubBytes(Lanes::AddBytes(most, up), upBack);
    }
    typename Lanes::U8 Lower(typename Lanes::U8 least) const {
        return Lanes::AddBytes(Lanes::SubBytes(least, down), downBack);
    }
};

/// Limits as they usually are. A dead zone of whole gains lets the gain follow it in one rounding multiply.
///
/// A sample that stands beyond both of its wider neighbours, by `beyond` past the nearer one, may go on by
/// ((128 − K)·beyond + (64 − K)·apart)·Q / 65536, `apart` being what the two are apart: less than `beyond`. To the other side,
/// and with a sample between the two, both formulas of the limiter come to 0 or less, so one product serves both.
template <class Lanes>
class UsualEdges {
public:
    static bool Covers(const EdgeLimits& limits) {
        const int32_t beyondWeight = 128 - limits.outerWeight;
        return limits.gain > 0 && limits.gain <= 31 && limits.deadZone % limits.gain == 0 && beyondWeight > 0 &&
               beyondWeight <= 64 && limits.slope >= 0 && beyondWeight * limits.slope <= 65536 && limits.offset == 0 &&
               limits.margin == 0;
    }

    explicit UsualEdges(const EdgeLimits& limits)
        : gain(Lanes::GainFactor(limits.gain)),
          deadZone(Lanes::Set(static_cast<int16_t>(limits.deadZone / limits.gain))),
          minusDeadZone(Lanes::Set(static_cast<int16_t>(-(limits.deadZone / limits.gain)))),
          outerWeights(Lanes::MakeWeights(128 - limits.outerWeight, 64 - limits.outerWeight)),
          slope(Lanes::Set(limits.slope)) {}

    /// centre   words of the window's centre
    /// measure  L
    EdgeDecision<Lanes> operator()(const EdgeWindow<Lanes>& window, const typename Lanes::Pair& centre,
                                   const typename Lanes::Pair& measure) const {
        const auto most = Lanes::MaxBytes(window.left3, window.right3);
        const auto least = Lanes::MinBytes(window.left3, window.right3);
        const auto above = Lanes::SubBytes(window.centre, most);  // one of these two is 0
        const auto below = Lanes::SubBytes(least, window.centre);
        const auto beyond = Lanes::MaxBytes(above, below);
        const auto reach = Lanes::WeighSum(Lanes::Together(beyond, Lanes::SubBytes(most, least)), outerWeights);
        const auto allowance =
            Lanes::PackUnpacked({Lanes::MulHigh(reach.low, slope), Lanes::MulHigh(reach.high, slope)});
        return {Lanes::PackUnpacked({Sharpen(centre.low, measure.low), Sharpen(centre.high, measure.high)}),
                Lanes::MinBytes(allowance, above), Lanes::MinBytes(allowance, below)};
    }

private:
    using I16 = typename Lanes::I16;

    I16 Sharpen(I16 centre, I16 measure) const {
        return Lanes::AddWrap(centre, Lanes::GainOver32(Core<Lanes>(measure, deadZone, minusDeadZone), gain));
    }

    I16 gain, deadZone, minusDeadZone;
    typename Lanes::Weights outerWeights;
    I16 slope;
};

/// Limits of any values, with the wrapping and saturating steps one by one.
template <class Lanes>
class AnyEdges {
public:
    explicit AnyEdges(const EdgeLimits& limits)
        : gain(Lanes::Set(limits.gain)),
          deadZone(Lanes::Set(limits.deadZone)),
          minusDeadZone(Lanes::Set(static_cast<int16_t>(-limits.deadZone))),
          outerWeight(Lanes::Set(limits.outerWeight)),
          slope(Lanes::Set(limits.slope)),
          minusSlope(Lanes::Set(static_cast<int16_t>(-limits.slope))),
          offset(Lanes::Set(limits.offset)),
          margin(Lanes::Set(limits.margin)) {}

    InwardEdgeDecision<Lanes> operator()(const EdgeWindow<Lanes>& window, const typename Lanes::Pair& centre,
                                         const typename Lanes::Pair& measure) const {
        const auto left3 = Lanes::Unpack(window.left3);
        const auto right3 = Lanes::Unpack(window.right3);
        typename Lanes::Pair up, down;
        Allow(Lanes::SubWrap(centre.low, left3.low), Lanes::SubWrap(centre.low, right3.low), up.low, down.low);
        Allow(Lanes::SubWrap(centre.high, left3.high), Lanes::SubWrap(centre.high, right3.high), up.high, down.high);
        return {Lanes::PackUnpacked({Sharpen(centre.low, measure.low), Sharpen(centre.high, measure.high)}),
                Lanes::PackUnpacked(up), Lanes::PackUnpacked(down), Lanes::PackUnpacked(Back(up)),
                Lanes::PackUnpacked(Back(down))};
    }

private:
    using I16 = typename Lanes::I16;

    I16 Sharpen(I16 centre, I16 measure) const {
        const auto cored = Core<Lanes>(Lanes::MulLow(measure, gain), deadZone, minusDeadZone);
        return Lanes::AddWrap(centre, Lanes::template ShiftRight<5>(Lanes::AddWrap(cored, Lanes::Set(16))));
    }
    void Allow(I16 a, I16 b, I16& up, I16& down) const {
        const auto middle = Lanes::template ShiftLeft<6>(Lanes::AddWrap(a, b));
        const auto above = Lanes::SubSat(Lanes::MulLow(Lanes::Max(a, b), outerWeight), middle);
        const auto below = Lanes::SubSat(Lanes::MulLow(Lanes::Min(a, b), outerWeight), middle);
        up = WithMargin(Lanes::AddWrap(Lanes::MulHigh(above, minusSlope), offset));
        down = WithMargin(Lanes::AddWrap(Lanes::MulHigh(below, slope), offset));
    }

    /// The local extremes themselves are allowed before the margin moves them.
    I16 WithMargin(I16 allowance) const { return Lanes::AddSat(Lanes::Max(allowance, Lanes::Set(0)), margin); }

    static typename Lanes::Pair Back(const typename Lanes::Pair& allowance) {
        return {Lanes::SubSat(Lanes::Set(0), allowance.low), Lanes::SubSat(Lanes::Set(0), allowance.high)};
    }

    I16 gain, deadZone, minusDeadZone, outerWeight, slope, minusSlope, offset, margin;
};

template <class Lanes, class Decision>
typename Lanes::U8 LimitBlock(const EdgeWindow<Lanes>& window, const Decision& decision) {
    const auto most = Lanes::MaxBytes(Lanes::MaxBytes(window.left, window.right), window.centre);
    const auto least = Lanes::MinBytes(Lanes::MinBytes(window.left, window.right), window.centre);
    // Packing has limited negative allowances to 0: without a margin the local extremes are always allowed.
    const auto within = Lanes::MaxBytes(decision.sharpened, decision.Lower(least));
    return Lanes::MinBytes(within, decision.Upper(most));
}

/// Calls run(decide) with the form that the limits ask for.
template <class Lanes, class Run>
void WithEdges(const EdgeLimits& limits, const Run& run) {
    if (UsualEdges<Lanes>::Covers(limits))
        run(UsualEdges<Lanes>(limits));
    else
        run(AnyEdges<Lanes>(limits));
}

constexpr int32_t edgeMarginColumns = 8;

/// Behind the last column of a row that has limits; 0 where none has.
inline int32_t EndOfLimits(int32_t width) {
    const int32_t groups = (width - 16) >> 3;
    return groups < 1 ? 0 : edgeMarginColumns + 8 * groups;
}

/// The margins are put back as early as they can be: whoever reads the row next would wait for such small stores.
template <class Lanes, class Decide>
void LimitEdgesWith(const uint8_t* in, uint8_t* out, int32_t end, const Decide& decide) {
    constexpr int32_t block = blockLength<Lanes>;
    constexpr int32_t head = block > edgeMarginColumns ? block : edgeMarginColumns;
    const auto limit = [&](int32_t x) {
        const EdgeWindow<Lanes> window(in + x, 1);
        const auto centre = Lanes::Unpack(window.centre);
        const auto sides = Lanes::Sum(window.left, window.right);
        const typename Lanes::Pair measure{Lanes::SubWrap(Lanes::AddWrap(centre.low, centre.low), sides.low),
                                           Lanes::SubWrap(Lanes::AddWrap(centre.high, centre.high), sides.high)};
        Lanes::StoreBytes(out + x, LimitBlock<Lanes>(window, decide(window, centre, measure)));
    };
    for (int32_t x = 0; x < head; x += block) limit(x);
    std::memcpy(out, in, edgeMarginColumns);
    for (int32_t x = head; x < end; x += block) limit(x);
}

template <class Lanes>
void LimitEdges(const uint8_t* in, uint8_t* out, int32_t width, const EdgeLimits& limits) {
    const int32_t end = EndOfLimits(width);
    if (end > 0) WithEdges<Lanes>(limits, [&](const auto& decide) { LimitEdgesWith<Lanes>(in, out, end, decide); });
    std::memcpy(out + end, in + end, static_cast<size_t>(width - end));
}

}  // namespace
}  // namespace clarivex
