// Automatic lighting control: a histogram of a sparse grid, its black and white, and the way they are followed.
#include "algorithms/lighting.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "algorithms/rounding.h"
#include "runtime/ticks.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

constexpr int32_t levelCount = 256;

using LevelCounts = std::array<uint32_t, levelCount>;

/// Black and white of a frame or of the tracker.
template <class Real>
struct LevelPair {
    Real black;
    Real white;
};

/// Which pairs of columns are looked at: all those inside the margin, on every rowStep-th row.
struct SamplingGrid {
    int32_t margin;
    int32_t rowStep;
};

SamplingGrid GridFor(int32_t height) {
    if (height >= 250) return {12, 4};
    if (height >= 140) return {8, 2};
    return {6, 1};
}

/// Counts votes in a table for each kind of vote, twice over, so that increments of equal levels, which are the rule,
/// do not wait for one another.
class VoteCounter {
public:
    static constexpr int32_t pieceLength = 1024;

    struct Votes {
        uint8_t level[pieceLength];
        uint8_t voteA[pieceLength];
        uint8_t voteB[pieceLength];
        uint8_t voteC[pieceLength];
    };

    void Count(const Votes& votes, int32_t pairs) {
        int32_t i = 0;
        for (; i + 1 < pairs; i += 2) {
            CountPair(votes, i, 0);
            CountPair(votes, i + 1, 1);
        }
        if (i < pairs) CountPair(votes, i, 0);
    }

    /// A pair's own level counts twice.
    LevelCounts Sum() const {
        LevelCounts sum{};
        for (size_t level = 0; level < sum.size(); ++level)
            for (const Tables& half : halves)
                sum[level] += 2 * half.level[level] + half.voteA[level] + half.voteB[level] + half.voteC[level];
        return sum;
    }

private:
    struct Tables {
        LevelCounts level{};
        LevelCounts voteA{};
        LevelCounts voteB{};
        LevelCounts voteC{};
    };

    void CountPair(const Votes& votes, int32_t i, size_t half) {
        ++halves[half].level[votes.level[i]];
        ++halves[half].voteA[votes.voteA[i]];
        ++halves[half].voteB[votes.voteB[i]];
        ++halves[half].voteC[votes.voteC[i]];
    }

    std::array<Tables, 2> halves;
};

/// Asks for a row's samples ahead of time: rows far apart are too much for processors to foresee.
void Prefetch(const uint8_t* row, int32_t count) {
    constexpr int32_t cacheLine = 64;
    for (int32_t x = 0; x < count; x += cacheLine) __builtin_prefetch(row + x);
}

LevelCounts CountLevels(const PictureView& planes, const KernelTable& kernels) {
    const PlaneView& luma = planes.luma;
    const auto [margin, rowStep] = GridFor(luma.height);
    const int32_t pairs = std::max(luma.width - 2 * margin + 1, 0) / 2;
    VoteCounter counter;
    VoteCounter::Votes votes;
    for (int32_t y = margin; y < luma.height - margin; y += rowStep) {
        const uint8_t* pairRow = luma.Row(y) + margin;
        const uint8_t* first = planes.second.Row(y / 2) + margin / 2;
        const uint8_t* second = planes.third.Row(y / 2) + margin / 2;
        const int32_t next = std::min(y + rowStep, luma.height - 1);
        Prefetch(luma.Row(next) + margin, 2 * pairs);
        Prefetch(planes.second.Row(next / 2) + margin / 2, pairs);
        Prefetch(planes.third.Row(next / 2) + margin / 2, pairs);
        for (int32_t done = 0; done < pairs; done += VoteCounter::pieceLength) {
            const int32_t piece = std::min(pairs - done, VoteCounter::pieceLength);
            kernels.lightingVotes(pairRow + 2 * done, first + done, second + done, piece,
                                  {votes.level, votes.voteA, votes.voteB, votes.voteC});
            counter.Count(votes, piece);
        }
    }
    return counter.Sum();
}

double TotalOf(const LevelCounts& counts) { return std::accumulate(counts.begin(), counts.end(), 0.0); }

/// Levels that hardly occur would move the edges.
void RemoveNoiseFloor(LevelCounts& counts) {
    constexpr double floorShare = 1e-4 / levelCount;  // of all levels together a ten-thousandth
    const auto noiseFloor = static_cast<uint32_t>(RoundToNearest(TotalOf(counts) * floorShare));
    for (uint32_t& count : counts) count -= std::min(count, noiseFloor);
}

/// The level, with its fraction, below which `target` of the counted votes lie.
float FindEdge(const LevelCounts& counts, double target, float fallback) {
    double sum = 0.0;
    for (size_t level = 0; level < counts.size(); ++level) {
        const double before = sum;
        sum += counts[level];
        if (sum < target) continue;
        const double fraction = counts[level] == 0 ? 0.0 : (target - before) / counts[level];
        return static_cast<float>(static_cast<double>(level) + fraction);
    }
    return fallback;
}

LevelPair<float> FindEdges(const LevelCounts& counts) {
    constexpr double lowShare = 0.001F;
    constexpr double highShare = 0.9993F;
    const double total = TotalOf(counts);
    return {FindEdge(counts, lowShare * total, 0.0F), FindEdge(counts, highShare * total, 255.0F)};
}

/// Sets the white so that highlights keep some room: 25 of 28 parts of the way from the black to a little above the
/// highest edge, and never on or below the black.
float StretchWhite(const LevelPair<float>& edges) {
    constexpr double share = 25.0 / 28.0;
    constexpr double headroom = 4.0;
    const double black = edges.black;
    const auto white = static_cast<float>(black + (edges.white + headroom - black) * share);
    return black < white ? white : edges.black + 1.0F;
}

/// Black stays within 16 … 128, white within 185 … 235, and the two at least 132 apart.
LevelPair<float> LimitLevels(float black, float white) {
    constexpr float darkestBlack = 16.0F, lightestBlack = 128.0F;
    constexpr float darkestWhite = 185.0F, lightestWhite = 235.0F;
    constexpr float leastSpan = 132.0F;
    black = std::min(std::max(black, darkestBlack), lightestBlack);
    white = std::max(white, darkestWhite);
    white = std::max(white, black + leastSpan);
    white = std::min(white, lightestWhite);
    if (white < black + leastSpan) black = white - leastSpan;
    return {black, white};
}

LevelPair<float> EstimateLevels(const PictureView& planes, const KernelTable& kernels) {
    LevelCounts counts = CountLevels(planes, kernels);
    RemoveNoiseFloor(counts);
    const LevelPair<float> edges = FindEdges(counts);
    return LimitLevels(edges.black, StretchWhite(edges));
}

// A scale in which differences near black and near white weigh more.
constexpr double warpExponent = 1.06;
constexpr double unwarpExponent = 1.0 / warpExponent;

LevelPair<double> Warp(double black, double white) {
    return {std::pow(black, warpExponent), 256.0 - std::pow(256.0 - white, warpExponent)};
}

LevelPair<double> Unwarp(double black, double white) {
    return {std::pow(black, unwarpExponent), 256.0 - std::pow(256.0 - white, unwarpExponent)};
}

void Store(LightingState& state, const LevelPair<double>& levels) {
    state.trackedBlack = static_cast<float>(levels.black);
    state.trackedWhite = static_cast<float>(levels.white);
}

/// How much of the old level goes with a warped step: `loss` of it for a step of `range`, which bears the step's sign, and
/// `leak` of it with every frame.
struct Pace {
    double loss;
    double range;

    double Kept(double step, double leak) const { return std::clamp(1.0 - step * loss / range - leak, 0.0, 1.0); }
};

/// The part of the old levels that is kept, from the warped steps to the new ones. Black falls fast and rises slowly,
/// white the other way round.
LevelPair<double> RetentionFor(double blackStep, double whiteStep, int64_t elapsed) {
    constexpr Pace blackRises{.loss = 0.004, .range = 70.0}, blackFalls{.loss = 0.22, .range = -40.0};
    constexpr Pace whiteRises{.loss = 0.13, .range = 40.0}, whiteFalls{.loss = 0.001, .range = -70.0};
    constexpr double blackLeak = 0.0031, whiteLeak = 0.0015;
    constexpr double longGap = 4.99;  // seconds after which nothing of the old levels counts
    if (static_cast<double>(elapsed) / ticksPerSecond >= longGap) return {0.0, 0.0};
    return {(blackStep > 0.0 ? blackRises : blackFalls).Kept(blackStep, blackLeak),
            (whiteStep > 0.0 ? whiteRises : whiteFalls).Kept(whiteStep, whiteLeak)};
}

/// Moves the tracker towards a frame's levels. Both make a round trip through the warped scale, rounded to single
/// precision where the tracker stores them.
void Track(LightingState& state, const LevelPair<float>& levels, int64_t elapsed) {
    const LevelPair<double> warped = Warp(levels.black, levels.white);
    Store(state, Warp(state.trackedBlack, state.trackedWhite));
    const LevelPair<double> kept =
        RetentionFor(warped.black - state.trackedBlack, warped.white - state.trackedWhite, elapsed);
    const LevelPair<double> target = Unwarp(warped.black, warped.white);
    Store(state, Unwarp(state.trackedBlack, state.trackedWhite));
    Store(state, {kept.black * state.trackedBlack + (1.0 - kept.black) * target.black,
                  kept.white * state.trackedWhite + (1.0 - kept.white) * target.white});
}

/// Maps the tracked levels to 16 and 235; chroma follows at 77 per cent, reduced as the black rises.
LightingCorrection CorrectionFor(const LightingState& state) {
    constexpr double videoBlack = 16.0, videoSpan = 219.0, neutralChroma = 128.0;
    constexpr double levelsOfVideo = videoSpan + 1.0;  // chroma is stretched over them, luma over the steps between
    constexpr double saturation = 1.04F;               // single precision, as pictures have always had it
    constexpr double chromaShare = 0.77;

    const double black = state.trackedBlack;
    const double span = state.trackedWhite - black;
    const double darkShare = 1.0 - (black - videoBlack) / videoSpan;
    const double chromaStretch = levelsOfVideo * (darkShare * saturation) / span;
    const double chromaGain = chromaShare * (chromaStretch - 1.0) + 1.0;

    LightingCorrection correction;
    correction.lumaGain = static_cast<float>(videoSpan / span);
    correction.lumaOffset = static_cast<float>(videoBlack - videoSpan * black / span);
    correction.chromaGainU = correction.chromaGainV = static_cast<float>(chromaGain);
    correction.chromaOffsetU = correction.chromaOffsetV =
        static_cast<float>(neutralChroma - neutralChroma * chromaGain);
    return correction;
}

}  // namespace

LightingCorrection AnalyseLighting(const PictureView& planes, int64_t elapsed, LightingState& state,
                                   const KernelTable& kernels) {
    Track(state, EstimateLevels(planes, kernels), elapsed);
    return CorrectionFor(state);
}

}  // namespace clarivex
