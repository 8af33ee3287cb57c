// What a pass is going to do, read as words: each rule that decides about it is one row of a table.
#include "engine/pass_plan.h"

#include <gtest/gtest.h>

#include <limits>

namespace clarivex {
namespace {

constexpr AxisScale kept = AxisScale::none;
constexpr AxisScale threeHalves = AxisScale::threeHalves;
constexpr AxisScale twofold = AxisScale::twofold;

/// Settings and the request of a frame, as rows change them.
struct Ask {
    EngineSettings settings;
    PassRequest request;

    void Modes(AxisScale horizontal, AxisScale vertical) {
        settings.frame.horizontalMode = horizontal;
        settings.frame.verticalMode = vertical;
    }

    void ReduceNoise(float level, int32_t rows, int32_t columns) {
        settings.noise.noiseReduction = level;
        settings.noise.noiseStagesH = rows;
        settings.noise.noiseStagesV = columns;
    }

    std::string Tell(const FrameSize& size) const { return TellPlan(MakePassPlan(settings, size, request)); }
};

TEST(PassPlan, TellsTheWayOfTheUsualFrames) {
    Ask ask;
    ask.settings.frame.sharpness = 1.0F;
    EXPECT_EQ(ask.Tell({352, 288}),
              "352 x 288: rows first\n"
              "strength 1, level 1\n"
              "lighting over 0.04167 s\n"
              "rows by 3/2\n"
              "  limit edges: full\n"
              "  post filter: odd\n"
              "  between 528 x 288\n"
              "columns by 3/2\n"
              "chroma centred\n"
              "target 528 x 432\n"
              "writes luma second third, 528 x 432\n"
              "aspect 1, noise 0.75\n");
    ask.Modes(kept, kept);
    ask.request.planes = lumaPlane;
    ask.settings.frame.lightingEnabled = false;
    EXPECT_EQ(ask.Tell({352, 288}),
              "352 x 288: kept size\n"
              "strength 1, level 1\n"
              "  sharpen columns: narrow\n"
              "  post filter: odd\n"
              "target 352 x 288\n"
              "writes luma, 352 x 288\n"
              "aspect 1, noise 0.75\n");
}

/// Pairs of modes, and those that they come to for a picture: the way is in the first line, the size in the last but one.
struct ModeRule {
    ScaleModes wanted;
    FrameSize size;
    const char* way;
};

TEST(PassPlan, GivesUpOneAxisThenBothAndPairsThatNoScalerHas) {
    for (const auto& [wanted, size, way] : {ModeRule{{threeHalves, threeHalves}, {1200, 1021}, "rows first"},
                                            {{threeHalves, threeHalves}, {2047, 600}, "rows first"},
                                            {{threeHalves, threeHalves}, {600, 1022}, "rows only"},
                                            {{threeHalves, threeHalves}, {800, 1535}, "rows only"},
                                            {{threeHalves, threeHalves}, {600, 1536}, "kept size"},
                                            {{threeHalves, threeHalves}, {2048, 100}, "kept size"},
                                            {{threeHalves, kept}, {2047, 600}, "rows only"},
                                            {{twofold, twofold}, {1023, 767}, "doubled"},
                                            {{twofold, twofold}, {1024, 100}, "kept size"},
                                            {{twofold, twofold}, {100, 768}, "kept size"},
                                            {{twofold, threeHalves}, {1361, 900}, "rows first"},
                                            {{twofold, threeHalves}, {1362, 900}, "rows first"},
                                            {{twofold, threeHalves}, {1200, 1022}, "rows only"},
                                            {{twofold, threeHalves}, {2048, 300}, "kept size"},
                                            {{threeHalves, twofold}, {100, 100}, "kept size"},
                                            {{twofold, kept}, {100, 100}, "kept size"},
                                            {{kept, twofold}, {100, 100}, "kept size"},
                                            {{kept, threeHalves}, {4000, 300}, "kept size"}}) {
        Ask ask;
        ask.settings.frame.sharpness = -1.0F;
        ask.Modes(wanted.horizontal, wanted.vertical);
        const std::string words = ask.Tell(size);
        EXPECT_NE(words.find(std::string(": ") + way + "\n"), std::string::npos) << words;
        const bool doubledRows = words.find("rows by 2\n") != std::string::npos;
        EXPECT_EQ(doubledRows, wanted == (ScaleModes{twofold, threeHalves}) && size.width < 1362 && size.height < 1022);
    }
}

/// A line that is in the plan of a picture, or is not when it begins with '!'.
struct StageRule {
    const char* name;
    FrameSize size;
    void (*change)(Ask&);
    std::vector<const char*> lines;
};

constexpr FrameSize usual{320, 240};
constexpr FrameSize narrow{8, 12};
constexpr FrameSize large{1440, 860};
constexpr FrameSize belowLarge{1440, 859};

void Same(Ask&) {}
void ColumnsFirst(Ask& ask) { ask.settings.order.verticalFirst = true; }

// clang-format off
const StageRule stageRules[] = {
    {"no samples", {0, 240}, Same, {"0 x 240: no samples", "!strength"}},
    {"nothing to do", usual, [](Ask& a) { a.Modes(kept, kept); }, {": untouched", "lighting over", "!writes"}},
    {"no strength that is no 0", usual,
     [](Ask& a) { a.Modes(kept, kept); a.settings.frame.sharpness = std::numeric_limits<float>::quiet_NaN(); },
     {": kept size", "strength 0, level 0", "writes luma second third, 320 x 240"}},
    {"a copy has something to show", usual, [](Ask& a) { a.Modes(kept, kept); a.ReduceNoise(1, 1, 0); },
     {": kept size", "  copy: the source", "  smooth rows: narrow"}},

    {"largest pictures", large, Same, {": too large", "!lighting", "!writes"}},
    {"largest but one line", belowLarge, Same, {": rows first"}},
    {"largest, kept in full", large, [](Ask& a) { a.request.keepFullSize = true; }, {": rows first", "lighting over 5 s"}},
    {"largest, second tuning set", large, [](Ask& a) { a.settings.order.tuningSet = TuningSet::second; }, {": rows first"}},
    {"larger than all limits, lifted", {5000, 3000}, [](Ask& a) { a.settings.order.liftSizeLimits = true; },
     {": rows first", "target 7500 x 4500"}},

    {"strength of small pictures", {160, 120}, [](Ask& a) { a.settings.frame.sharpness = 1; }, {"strength 0.3193, level 0"}},
    {"strength from 80,000 samples on", {400, 209}, [](Ask& a) { a.settings.frame.sharpness = 1; }, {"strength 1, level 1"}},
    {"strength at any size", {32, 8}, [](Ask& a) { a.settings.frame.sharpness = -3; }, {"strength 3, level 3"}},
    {"strength without bounds", usual, [](Ask& a) { a.settings.frame.sharpness = -std::numeric_limits<float>::infinity(); },
     {"strength 9, level 8"}},

    {"levels at once", usual, [](Ask& a) { a.request.lightingAdoptNow = true; }, {"lighting over 5 s"}},
    {"levels of an earlier pass", usual, [](Ask& a) { a.request.correction.emplace(); }, {"!lighting"}},
    {"levels of an earlier pass, at once", usual,
     [](Ask& a) { a.request.correction.emplace(); a.request.lightingAdoptNow = true; }, {"lighting over 5 s"}},
    {"a frame's time", usual, [](Ask& a) { a.request.duration = 20000000; }, {"lighting over 2 s"}},

    {"smoothing in the strips of rows", usual, [](Ask& a) { a.ReduceNoise(1, 2, 0); },
     {"  copy: the source", "  smooth in strips: knee", "!smooth rows", "!smooth chroma"}},
    {"smoothing of columns in front of rows", usual, [](Ask& a) { a.ReduceNoise(1, 0, 3); },
     {"  smooth columns: gated\n", "!smooth in strips"}},
    {"the other way round", usual, [](Ask& a) { ColumnsFirst(a); a.ReduceNoise(1, 1, 2); },
     {": columns first", "  between 320 x 360", "  smooth rows: narrow", "  smooth in strips: knee"}},
    {"third stage without a gate", usual,
     [](Ask& a) { a.ReduceNoise(1, 3, 0); a.settings.noise.gatedSharpen = false; }, {"  smooth in strips: knee"}},
    {"chroma from two and a half on", usual, [](Ask& a) { a.ReduceNoise(2.5F, 0, 0); }, {"  smooth chroma: narrow"}},
    {"chroma below it", usual, [](Ask& a) { a.ReduceNoise(2.49F, 0, 0); }, {"!smooth", "!copy"}},
    {"no noise reduction where both axes are doubled", usual, [](Ask& a) { a.Modes(twofold, twofold); a.ReduceNoise(4, 2, 2); },
     {"!smooth", "!copy"}},
    {"forced without a level", usual, [](Ask& a) { a.ReduceNoise(0, 3, 0); a.settings.noise.forceDetailB = true; },
     {"  smooth in strips: narrow"}},
    {"columns that are not scaled are not smoothed in strips", usual,
     [](Ask& a) { ColumnsFirst(a); a.Modes(kept, threeHalves); a.ReduceNoise(1, 0, 1); }, {": untouched", "!smooth"}},

    {"simple limiter", usual, [](Ask& a) { a.settings.edges.edgeStageMode = EdgeStage::simple; }, {"  limit edges: simple"}},
    {"no limiter", usual, [](Ask& a) { a.settings.edges.edgeStageMode = EdgeStage::none; }, {"!limit edges"}},
    {"limiter of wide samples", usual, [](Ask& a) { a.Modes(twofold, twofold); a.settings.frame.sharpness = -1.5F; },
     {"  limit edges: full", "  post filter: 12 taps, even", "chroma shifted", "target 640 x 480"}},
    {"limiter of wide samples, another kernel", usual,
     [](Ask& a) { a.Modes(twofold, twofold); a.settings.edges.edgeKernelSelect = false; }, {"!limit edges"}},
    {"odd filters have no wide form", usual,
     [](Ask& a) { a.Modes(twofold, twofold); a.settings.detail.filterShapes.fill(FilterShape::odd); }, {"!post filter"}},
    {"without level tables", usual, [](Ask& a) { a.settings.detail.sharpenScheme = SharpenScheme::detailGains; },
     {"!post filter", "  detail: knee"}},
    {"detail beside level tables, driven by the strength", usual, [](Ask& a) { a.settings.detail.curveSharpening = true; },
     {"  post filter: odd", "  detail: knee"}},
    {"detail beside level tables, above the knee", usual,
     [](Ask& a) { a.settings.detail.wideDetailMode = WideDetail::aboveKnee; }, {"  post filter: odd", "  detail: knee"}},
    {"diffused", usual,
     [](Ask& a) { a.settings.detail.curveSharpening = a.settings.detail.diffusedDetail = true; }, {"!detail"}},
    {"booster", usual, [](Ask& a) { a.settings.detail.detailBoostA = a.settings.detail.detailBoostB = 1; }, {"  booster: on"}},
    {"half a booster", usual, [](Ask& a) { a.settings.detail.detailBoostA = 1; }, {"!booster"}},
    {"booster without folded gains", usual,
     [](Ask& a) { a.settings.detail.detailBoostA = a.settings.detail.detailBoostB = 1;
                  a.settings.detail.wideDetailMode = WideDetail::aboveKnee; }, {"!booster"}},
    {"rank of doubled rows", usual,
     [](Ask& a) { a.Modes(twofold, threeHalves); a.settings.detail.columnRankMode = RankStage::smaller; }, {"  rank: smaller"}},
    {"no rank of others", usual, [](Ask& a) { a.settings.detail.columnRankMode = RankStage::larger; }, {"!rank"}},
    {"across the rows where only these are scaled", usual,
     [](Ask& a) { a.Modes(threeHalves, kept); a.settings.frame.sharpness = -2; },
     {": rows only", "  cross: down the columns", "target 480 x 240", "aspect 1.5"}},

    {"some planes", usual, [](Ask& a) { a.request.planes = secondPlane | thirdPlane; }, {"writes second third, 480 x 360"}},
    {"all planes of one axis", usual, [](Ask& a) { a.Modes(threeHalves, kept); a.request.planes = secondPlane; },
     {"writes luma second third, 480 x 240"}},
    {"all planes with the columns first", usual, [](Ask& a) { ColumnsFirst(a); a.request.planes = secondPlane; },
     {"writes luma second third, 480 x 360"}},
    {"rows too narrow to be doubled alone", narrow, [](Ask& a) { a.Modes(twofold, threeHalves); },
     {"writes second third, 0 x 0", "target 16 x 18", "aspect 1.333"}},
    {"the same on both axes", narrow, [](Ask& a) { a.Modes(twofold, twofold); }, {"writes luma second third, 16 x 24"}},
    {"columns alone scale nothing", usual, [](Ask& a) { a.Modes(kept, threeHalves); a.settings.frame.sharpness = -1; },
     {"target 320 x 360", "writes luma second third, 320 x 240", "aspect 0.6667"}},
    {"odd sizes", {41, 21}, Same, {"target 61 x 31"}},
    {"another aspect", usual, [](Ask& a) { a.request.pixelAspect = 0.5F; a.Modes(threeHalves, kept); }, {"aspect 0.75"}},
    {"noise of a strength", usual,
     [](Ask& a) { a.settings.frame.ditherGain = 1; a.settings.frame.sharpness = -1; }, {"noise 1.673"}},
    {"part of the picture", usual, [](Ask& a) { a.settings.order.splitView = true; }, {"right part only"}},
};
// clang-format on

TEST(PassPlan, FollowsEachRuleOfItsStages) {
    for (const StageRule& rule : stageRules) {
        Ask ask;
        rule.change(ask);
        const std::string words = ask.Tell(rule.size);
        for (const char* line : rule.lines) {
            const bool wanted = line[0] != '!';
            EXPECT_EQ(words.find(wanted ? line : line + 1) != std::string::npos, wanted)
                << rule.name << ": " << line << "\n"
                << words;
        }
    }
}

TEST(PassPlan, FoldedWideGainsApplyFromZeroOn) {
    for (const WideDetail mode : {WideDetail::aboveKnee, WideDetail::fromZero}) {
        EngineSettings settings;
        settings.detail.curveSharpening = true;
        settings.frame.sharpness = -5.0F;
        settings.detail.wideDetailMode = mode;
        const SharpenCoefficients gains = MakePassPlan(settings, usual, {}).rows.sleeping.detailGains;
        EXPECT_EQ(gains.wideKnee == 0, mode == WideDetail::fromZero);
        EXPECT_EQ(gains.wideBase == 0, mode == WideDetail::fromZero);
    }
}

}  // namespace
}  // namespace clarivex
