#include "engine/tuning/tuning.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "engine/enhancement_pass.h"

namespace clarivex {
namespace {

// Samples near the margins say more about how a stage ends its rows than about its settings.
constexpr int32_t columnMargin = 16;
constexpr int32_t rowMargin = 8;

constexpr double errorUnit = 255.0;

constexpr int32_t movesAnAttempt = 3;
constexpr double mostSharpness = 8.99;
constexpr double sharpnessStep = 0.01;

/// A setting that may move, and how far. Choices move by their numbers.
struct MovableSetting {
    const char* name;
    int32_t (*get)(const EngineSettings&);
    void (*set)(EngineSettings&, int32_t);
    int32_t least;
    int32_t most;
};

template <auto group, auto field>
constexpr MovableSetting Movable(const char* name, int32_t least, int32_t most) {
    return {name, [](const EngineSettings& settings) { return static_cast<int32_t>(settings.*group.*field); },
            [](EngineSettings& settings, int32_t value) {
                auto& place = settings.*group.*field;
                place = static_cast<std::remove_reference_t<decltype(place)>>(value);
            },
            least, most};
}

constexpr auto prototype = &EngineSettings::prototype;
constexpr auto edges = &EngineSettings::edges;
constexpr auto detail = &EngineSettings::detail;

// clang-format off
constexpr std::array<MovableSetting, 20> movableSettings = {{
    Movable<prototype, &PrototypeSettings::kernelBeta>   ("kernelBeta",            0, 200),
    Movable<prototype, &PrototypeSettings::kernelCutoff> ("kernelCutoff",         40, 100),
    Movable<prototype, &PrototypeSettings::windowKind>   ("windowKind",            0,   2),
    Movable<edges, &EdgeSettings::edgeStageMode>         ("edgeStageMode",         0,   2),
    Movable<edges, &EdgeSettings::edgeGain>              ("edgeGain",              0, 127),
    Movable<edges, &EdgeSettings::edgeDeadZone>          ("edgeDeadZone",          0,  64),
    Movable<edges, &EdgeSettings::edgeMargin>            ("edgeMargin",            0,  64),
    Movable<edges, &EdgeSettings::edgeNeighbourWeight>   ("edgeNeighbourWeight",   0, 128),
    Movable<edges, &EdgeSettings::wideSlopeBase>         ("wideSlopeBase",       -32,  64),
    Movable<edges, &EdgeSettings::wideSlope>             ("wideSlope",             0, 127),
    Movable<edges, &EdgeSettings::wideOffset>            ("wideOffset",          -64,  64),
    Movable<detail, &DetailSettings::wideDetailMode>     ("wideDetailMode",        1,   2),
    Movable<detail, &DetailSettings::baseDetailGain>     ("baseDetailGain",      -10,  10),
    Movable<detail, &DetailSettings::coringLevel>        ("coringLevel",           0,   4),
    Movable<detail, &DetailSettings::detailBoostA>       ("detailBoostA",          0, 255),
    Movable<detail, &DetailSettings::detailBoostB>       ("detailBoostB",          0,  63),
    Movable<detail, &DetailSettings::fusedNarrowGain>    ("fusedNarrowGain",     -20,  30),
    Movable<detail, &DetailSettings::fusedWideGain>      ("fusedWideGain",       -20,  30),
    Movable<detail, &DetailSettings::twofoldNarrowGain>  ("twofoldNarrowGain",   -20,  30),
    Movable<detail, &DetailSettings::twofoldWideGain>    ("twofoldWideGain",     -20,  30),
}};
// clang-format on

/// 0 … below 1.
double RandomFraction(Random15& random) { return random.Next() / 32768.0; }

int32_t HalvesOf(TuningScale scale) { return static_cast<int32_t>(scale); }

/// Three settings from the list and the sharpness move by a random step each.
EngineSettings Vary(EngineSettings settings, Random15& random) {
    for (int32_t i = 0; i < movesAnAttempt; ++i) {
        const MovableSetting& setting = movableSettings[static_cast<size_t>(RandomChoice(random))];
        const int32_t moved = setting.get(settings) + RandomStep(random);
        setting.set(settings, std::clamp(moved, setting.least, setting.most));
    }
    const double sharpness = settings.frame.sharpness + RandomStep(random) * sharpnessStep;
    settings.frame.sharpness = static_cast<float>(std::clamp(sharpness, 0.0, mostSharpness));
    return settings;
}

std::vector<TunedSetting> Compare(const EngineSettings& start, const EngineSettings& best) {
    std::vector<TunedSetting> rows{{"sharpness", start.frame.sharpness, best.frame.sharpness}};
    for (const MovableSetting& setting : movableSettings)
        rows.push_back({setting.name, static_cast<double>(setting.get(start)), static_cast<double>(setting.get(best))});
    return rows;
}

/// Copies a plane into one that may be larger, whose further columns and rows repeat the last ones.
void CopyAndExtend(const Plane& target, const PlaneView& source) {
    for (int32_t y = 0; y < target.height; ++y) {
        const uint8_t* from = source.Row(std::min(y, source.height - 1));
        std::memcpy(target.Row(y), from, static_cast<size_t>(source.width));
        std::fill(target.Row(y) + source.width, target.Row(y) + target.width, from[source.width - 1]);
    }
}

WorkingImage EvenImage(const PictureView& picture) {
    WorkingImage image;
    image.Resize((picture.luma.width + 1) & ~1, (picture.luma.height + 1) & ~1);
    CopyAndExtend(image.Planes().luma, picture.luma);
    CopyAndExtend(image.Planes().second, picture.second);
    CopyAndExtend(image.Planes().third, picture.third);
    return image;
}

/// Each sample becomes the average of the area that it covers, `halves` half samples of the source wide and high. Areas
/// that reach past the source take its last samples.
void ReducePlane(const Plane& target, const PlaneView& source, int32_t halves) {
    const auto from = [=](int32_t place, int32_t half, int32_t length) {
        return std::min((place * halves + half) / 2, length - 1);
    };
    const int32_t area = halves * halves;
    for (int32_t y = 0; y < target.height; ++y)
        for (int32_t x = 0; x < target.width; ++x) {
            int32_t sum = area / 2;
            for (int32_t j = 0; j < halves; ++j)
                for (int32_t i = 0; i < halves; ++i)
                    sum += source.Row(from(y, j, source.height))[from(x, i, source.width)];
            target.Row(y)[x] = static_cast<uint8_t>(sum / area);
        }
}

/// As large as its enlargement needs it to cover the whole source.
WorkingImage Reduce(const PictureView& source, TuningScale scale) {
    const int32_t halves = HalvesOf(scale);
    const auto side = [=](int32_t length) { return (2 * length + halves - 1) / halves; };
    WorkingImage image;
    image.Resize(side(source.luma.width), side(source.luma.height));
    ReducePlane(image.Planes().luma, source.luma, halves);
    ReducePlane(image.Planes().second, source.second, halves);
    ReducePlane(image.Planes().third, source.third, halves);
    return image;
}

/// Squares, so that a halo or a lost edge weighs more than the same sum of differences spread over the picture.
double ErrorOf(const PlaneView& actual, const PlaneView& wanted) {
    const int32_t width = std::min(actual.width, wanted.width);
    const int32_t height = std::min(actual.height, wanted.height);
    uint64_t sum = 0;
    uint64_t count = 0;
    for (int32_t y = rowMargin; y < height - rowMargin; ++y)
        for (int32_t x = columnMargin; x < width - columnMargin; ++x, ++count) {
            const int32_t difference = actual.Row(y)[x] - wanted.Row(y)[x];
            sum += static_cast<uint32_t>(difference * difference);
        }
    return count == 0 ? 0.0 : static_cast<double>(sum) / errorUnit / static_cast<double>(count);
}

/// The longest even side that is reduced to one below the limit.
constexpr int32_t Most(int32_t limit, AxisScale scale) { return Scaled(limit - 1, scale) & ~1; }

void CheckSize(const PlaneView& luma, TuningScale scale) {
    const TuningLimits limits = TuningLimitsOf(scale);
    if (luma.width >= limits.leastWidth && luma.width <= limits.mostWidth && luma.height >= limits.leastHeight &&
        luma.height <= limits.mostHeight)
        return;
    const auto size = [](int32_t width, int32_t height) {
        return std::to_string(width) + "x" + std::to_string(height);
    };
    throw std::invalid_argument(
        "a picture of " + size(luma.width, luma.height) + " cannot be tuned on at this scale: it must be at least " +
        size(limits.leastWidth, limits.leastHeight) + " and at most " + size(limits.mostWidth, limits.mostHeight));
}

/// An engine, the picture it is given and the one it is to reach.
class Harness {
public:
    Harness(const EngineSettings& engineSettings, const PictureView& picture, const TuningOptions& options,
            const KernelTable& kernels)
        : start(engineSettings),
          options(options),
          kernels(kernels),
          target(EvenImage(picture)),
          reduced(Reduce(target.Planes(), options.scale)) {}

    Tuning Run(const TuningObserver& observer) {
        SetModes();
        Tuning tuning;
        tuning.startError = tuning.bestError = Try(start);
        tuning.best = Search(tuning.bestError, observer);
        tuning.settings = Compare(start, tuning.best);
        ShowBest(tuning);
        return tuning;
    }

private:
    void SetModes() {
        FrameSettings& frame = start.frame;
        frame.horizontalMode = frame.verticalMode = static_cast<AxisScale>(HalvesOf(options.scale) - 2);
        frame.lightingEnabled = false;
    }

    EngineSettings Search(double& bestError, const TuningObserver& observer) {
        Random15 random(options.seed);
        EngineSettings best = start;
        for (int32_t number = 1; number <= options.attempts; ++number) {
            const EngineSettings varied = Vary(best, random);
            const double error = Try(varied);
            const bool improves = error < bestError;
            if (improves) {
                best = varied;
                bestError = error;
            }
            if (observer) observer({number, error, improves});
        }
        return best;
    }

    /// Only luma is compared, so only luma is asked for.
    double Try(const EngineSettings& settings) {
        return ErrorOf(Enhance(settings, lumaPlane) ? enhanced.Planes().luma : reduced.Planes().luma,
                       target.Planes().luma);
    }

    void ShowBest(Tuning& tuning) {
        if (!Enhance(tuning.best, allPlanes)) PrepareWorkingImage(enhanced, reduced.Planes(), reduced.End());
        tuning.reduced = std::move(reduced);
        tuning.enhanced = std::move(enhanced);
    }

    bool Enhance(const EngineSettings& settings, uint32_t planes) {
        const Plane& luma = reduced.Planes().luma;
        const PassRequest request{.planes = planes, .keepFullSize = true, .correction = {}};
        const PassPlan plan = MakePassPlan(settings, {luma.width, luma.height}, request);
        state.filtersDirty = true;
        if (plan.Writes()) enhanced.Resize(plan.target.width, plan.target.height);
        return RunPass(plan, SourceOf(reduced), enhanced.Planes(), state, kernels).planesWritten;
    }

    EngineSettings start;
    EngineState state;
    const TuningOptions& options;
    const KernelTable& kernels;
    WorkingImage target;
    WorkingImage reduced;
    WorkingImage enhanced;
};

}  // namespace

int32_t RandomStep(Random15& random) {
    constexpr double wideShare = 0.1;
    constexpr int32_t wide = 100;
    constexpr int32_t fine = 4;
    const int32_t reach = RandomFraction(random) < wideShare ? wide : fine;
    return static_cast<int32_t>(RandomFraction(random) * (2 * reach + 1)) - reach;
}

int32_t RandomChoice(Random15& random) {
    return static_cast<int32_t>(RandomFraction(random) * static_cast<double>(movableSettings.size()));
}

TuningLimits TuningLimitsOf(TuningScale scale) {
    constexpr AxisScale threeHalves = AxisScale::threeHalves;
    constexpr AxisScale twofold = AxisScale::twofold;
    constexpr int32_t leastWidth = 2 * columnMargin + 1;
    constexpr int32_t leastHeight = 2 * rowMargin + 1;
    switch (scale) {
        case TuningScale::threeHalves:
            return {leastWidth, leastHeight, Most(threeHalvesLimit.width, threeHalves),
                    Most(threeHalvesLimit.height, threeHalves)};
        case TuningScale::twofold:
            return {leastWidth, leastHeight, Most(twofoldLimit.width, twofold), Most(twofoldLimit.height, twofold)};
        default: return {leastWidth, leastHeight, 65536, 65536};
    }
}

Tuning TuneEngine(const EngineSettings& settings, const PictureView& target, const TuningOptions& options,
                  const TuningObserver& observer, const KernelTable& kernels) {
    CheckSize(target.luma, options.scale);
    return Harness(settings, target, options, kernels).Run(observer);
}

}  // namespace clarivex
