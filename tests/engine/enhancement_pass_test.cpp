#include "engine/enhancement_pass.h"

#include <gtest/gtest.h>

#include "algorithms/edge_sharpeners.h"
#include "algorithms/unscaled.h"
#include "engine/detail_gains.h"
#include "engine/post_filter.h"
#include "engine/stage_plans.h"
#include "engine/strength.h"
#include "tests/engine/plain_scalers.h"
#include "tests/simd/plain_kernels.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

class Pass : public testing::Test {
protected:
    int32_t Run(const SourceImage& source, uint32_t planes = allPlanes) {
        return EnhancementPass(engine, frame, source, {&image, nullptr}, aspect, info, planes, scalarKernels);
    }

    /// A pass in the modes wanted, over a picture of a size.
    int32_t RunSize(ScaleModes modes, int32_t width, int32_t height) {
        engine.horizontalMode = modes.horizontal;
        engine.verticalMode = modes.vertical;
        const DecodedPicture picture(width, height, width, Texture::soft, 1);
        return Run(picture.Source());
    }

    EnhancementEngine engine;
    FrameRecord frame;
    WorkingImage image;
    float aspect = 1.0F;
    FrameInfo info;
};

TEST_F(Pass, EmptiesItsImageForAnEmptyFrame) {
    aspect = 3.0F;
    image.Resize(48, 24);
    EXPECT_EQ(RunSize({1, 1}, 32, 0), 0);
    EXPECT_EQ(image.Planes().luma.width, 0);
    EXPECT_EQ(image.Planes().luma.height, 0);
    EXPECT_EQ(aspect, 1.0F);
    EXPECT_EQ(info.noiseAmplitude, 0);
    EXPECT_EQ(engine.filtersDirty, 1) << "nothing was designed";
}

TEST_F(Pass, LeavesTheLargestPicturesAlone) {
    engine.sharpness = 1.0F;
    EXPECT_EQ(RunSize({0, 0}, 1440, 859), 1);
    EXPECT_EQ(info.noiseAmplitude, 0.75F);
    EXPECT_EQ(engine.stages.bypassActive, 0);
    image.Resize(5, 5);
    engine.lightingAdoptNow = 1;
    engine.noiseReduction = 3.0F;
    const LightingState before = engine.lighting;
    info = {};
    EXPECT_EQ(RunSize({1, 1}, 1440, 860), 0);
    EXPECT_EQ(info.noiseAmplitude, 0);
    EXPECT_EQ(info.writtenWidth, 0);
    EXPECT_EQ(engine.stages.bypassActive, 1);
    EXPECT_EQ(engine.sharpness, 0) << "the driver writes it again";
    EXPECT_EQ(image.Planes().luma.width, 5) << "with nothing to write the image stays";
    EXPECT_EQ(engine.lighting.trackedBlack, before.trackedBlack);
    EXPECT_EQ(engine.lightingAdoptNow, 0);
    EXPECT_TRUE(frame.lightingCache.valid);
}

TEST_F(Pass, EnhancesThemAllTheSameWhenTold) {
    engine.sharpness = 1.0F;
    frame.keepFullSize = true;
    EXPECT_EQ(RunSize({0, 0}, 1440, 860), 1);
    frame.keepFullSize = false;
    engine.tuningSet = 1;
    EXPECT_EQ(RunSize({0, 0}, 1440, 860), 1);
}

TEST_F(Pass, WritesNothingWithoutScalingAndStrength) {
    image.Resize(5, 5);
    EXPECT_EQ(RunSize({0, 0}, 40, 20), 0);
    EXPECT_EQ(image.Planes().luma.width, 5);
    EXPECT_EQ(info.noiseAmplitude, 0.75F);
    EXPECT_EQ(info.writtenHeight, 0);
    engine.noiseReduction = 1.0F;
    engine.noiseStagesH = 1;
    EXPECT_EQ(RunSize({0, 0}, 40, 20), 1) << "a private copy has something to show";
    EXPECT_EQ(image.Planes().luma.width, 40);
    EXPECT_EQ(RunSize({2, 2}, 40, 20), 0) << "twofold modes leave the frame to the caller";
}

TEST_F(Pass, ReportsSizeAndAspectOfWhatItWrote) {
    EXPECT_EQ(RunSize({1, 1}, 41, 21), 1);
    EXPECT_EQ(info.writtenWidth, 61);
    EXPECT_EQ(info.writtenHeight, 31);
    EXPECT_EQ(image.Planes().luma.width, 61);
    EXPECT_EQ(image.Planes().luma.height, 31);
    EXPECT_FLOAT_EQ(aspect, 1.0F);
    EXPECT_EQ(RunSize({1, 1}, 41, 1022), 1);
    EXPECT_EQ(info.writtenHeight, 1022);
    EXPECT_EQ(image.Planes().luma.height, 1022);
    EXPECT_FLOAT_EQ(aspect, 1.5F);
    engine.sharpness = 1.0F;
    EXPECT_EQ(RunSize({0, 1}, 41, 21), 1);
    EXPECT_EQ(info.writtenWidth, 41);
    EXPECT_EQ(info.writtenHeight, 21) << "rows that keep their size keep their number";
    EXPECT_FLOAT_EQ(aspect, 1.0F);
}

TEST_F(Pass, WritesThePlanesNamedUnlessOneAxisIsScaled) {
    const DecodedPicture picture(40, 20, 40, Texture::soft, 1);
    engine.sharpness = -1.0F;
    for (const auto& [modes, whole] :
         {std::pair{ScaleModes{0, 0}, false}, {ScaleModes{1, 1}, false}, {ScaleModes{1, 0}, true}}) {
        engine.horizontalMode = modes.horizontal;
        engine.verticalMode = modes.vertical;
        const WorkingImage target = TestImage(60, 30, Texture::hard, 2);
        const WorkingImage before = TestImage(60, 30, Texture::hard, 2);
        const ImagePlanes planes = target.Planes();
        EnhancementPass(engine, frame, picture.Source(), {nullptr, &planes}, aspect, info, secondPlane, scalarKernels);
        EXPECT_EQ(!SameSamples(planes.luma, before.Planes().luma), whole);
        EXPECT_FALSE(SameSamples(planes.second, before.Planes().second));
        EXPECT_EQ(!SameSamples(planes.third, before.Planes().third), whole);
    }
}

TEST_F(Pass, AnalysesAFrameOnce) {
    const DecodedPicture picture(200, 150, 200, Texture::soft, 1);
    Run(picture.Source());
    EXPECT_TRUE(frame.lightingCache.valid);
    EXPECT_EQ(engine.lightingAdoptNow, 0);
    const float adopted = engine.lighting.trackedWhite;
    EXPECT_LT(adopted, 235);
    engine.lighting = {};
    frame.lightingCache.correction.lumaGain = 7.0F;
    Run(picture.Source());
    EXPECT_EQ(info.correction.lumaGain, 7.0F) << "from the cache";
    EXPECT_EQ(engine.lighting.trackedWhite, 235);
    frame.lightingCache.valid = false;
    Run(picture.Source());
    EXPECT_GT(engine.lighting.trackedWhite, adopted) << "a frame's time moves the levels a little";
    EXPECT_LT(engine.lighting.trackedWhite, 235);
    engine.lightingAdoptNow = 1;
    Run(picture.Source());
    EXPECT_EQ(engine.lighting.trackedWhite, adopted) << "adopted at once, whatever the cache holds";
    engine.lighting = {};
    frame.lightingCache.valid = false;
    frame.keepFullSize = true;
    Run(picture.Source());
    EXPECT_EQ(engine.lighting.trackedWhite, adopted);
    engine.lightingEnabled = 0;
    info = {};
    engine.lightingAdoptNow = 1;
    Run(picture.Source());
    EXPECT_EQ(info.correction.lumaGain, 1.0F);
    EXPECT_EQ(engine.lightingAdoptNow, 1);
}

TEST_F(Pass, FollowsTheStrengthAlongRowsAtOnceAndDownColumnsWhenTold) {
    const DecodedPicture picture(400, 300, 400, Texture::soft, 1);
    engine.sharpness = 1.0F;
    Run(picture.Source());
    const TapSet columns = engine.tapsVertical.a;
    const uint32_t before = image.Planes().luma.Row(100)[100];
    engine.sharpness = 4.0F;
    Run(picture.Source());
    EXPECT_EQ(engine.tapsVertical.a, columns);
    EXPECT_NE(image.Planes().luma.Row(100)[100], before);
    engine.filtersDirty = 1;
    Run(picture.Source());
    EXPECT_NE(engine.tapsVertical.a, columns);
    EXPECT_EQ(engine.filtersDirty, 0);
}

TEST_F(Pass, TimesOnlyTheModesThatScale) {
    for (int32_t i = 0; i < 3; ++i) RunSize({1, 1}, 64, 48);
    EXPECT_EQ(engine.timing.Figures(TimingClass::bothAxes).meanCount, 1);
    engine.verticalFirst = 1;
    RunSize({1, 1}, 64, 48);
    EXPECT_EQ(engine.timing.Figures(TimingClass::columnsFirst).sampleCount, 1);
    RunSize({1, 0}, 64, 48);
    EXPECT_EQ(engine.timing.Figures(TimingClass::rowsOnly).sampleCount, 1);
    engine.sharpness = 1.0F;
    RunSize({0, 0}, 64, 48);
    EXPECT_EQ(engine.timing.Figures(TimingClass::bothAxes).sampleCount, 0);
}

/// The pass's way through the picture with the plain scalers, each stage over the whole picture.
class PlainPass {
public:
    PlainPass(const EngineSettings& engineSettings, const SourceImage& source)
        : modes{engineSettings.horizontalMode, engineSettings.verticalMode} {
        static_cast<EngineSettings&>(engine) = engineSettings;
        const Plane& luma = source.planes.luma;
        const Strength strength = StrengthOf(engine.sharpness, luma.width, luma.height);
        DesignFilters(engine, strength, modes.horizontal);
        filter = DesignPostFilter(engine, strength, modes.horizontal);
        StageSettings& stages = engine.stages;
        stages.postNarrowH.baseGainLog2 = stages.postNarrowV.baseGainLog2 =
            static_cast<float>(engine.baseDetailGain * 0.3);
        reduction = SetUpNoiseReduction(engine, modes, false, stages);
        work = source;
        if (stages.preModeH != 0 || stages.preModeV != 0 || stages.gatedH != 0 || stages.gatedV != 0 ||
            reduction.smoothsChroma) {
            PrepareWorkingImage(copy, source.planes, source.end);
            work = SourceOf(copy);
        }
        SetUpDetailGains(engine, {modes, strength, reduction.knee, luma.width, luma.height, 1.0F, false}, stages);
    }

    void Run(const ImagePlanes& target) {
        SmoothChroma();
        const bool columnsFirst = engine.verticalFirst != 0;
        engine.stages.fuseHorizontal = !columnsFirst && modes.horizontal != 0;
        engine.stages.fuseVertical = columnsFirst && modes.vertical != 0;
        if (engine.stages.fuseVertical == 0) SharpenColumns();
        if (engine.stages.fuseHorizontal == 0) SharpenRows();
        if (modes.horizontal == 0)
            KeepSize(target);
        else if (modes.vertical == 0)
            ScaleRows(target, work, engine.stages.postNarrowV);
        else if (columnsFirst)
            ScaleColumnsFirst(target);
        else
            ScaleRowsFirst(target);
    }

private:
    void SmoothChroma() {
        if (!reduction.smoothsChroma) return;
        SharpenRowsNarrow(work.planes.third, reduction.smoothing);
        SharpenColumnsNarrow(work.planes.second, reduction.smoothing);
        SharpenRowsNarrow(work.planes.second, reduction.smoothing);
        SharpenColumnsNarrow(work.planes.third, reduction.smoothing);
    }
    void SharpenColumns() {
        const StageSettings& s = engine.stages;
        const Plane& luma = work.planes.luma;
        if (s.preModeV == 1) SharpenColumnsNarrow(luma, s.preNarrowV);
        if (s.preModeV == 2) SharpenColumnsPlain(luma, s.preNarrowV, s.preWideV);
        if (s.gatedV != 0) SharpenColumnsGated(luma, s.preNarrowV, s.preWideV);
    }
    void SharpenRows() {
        const StageSettings& s = engine.stages;
        const Plane& luma = work.planes.luma;
        if (s.preModeH == 1) SharpenRowsNarrow(luma, s.preNarrowH);
        if (s.preModeH == 2) SharpenRowsKnee(luma, s.preNarrowH, s.preWideH, false, RowDither::byRow, nullptr);
        if (s.gatedH != 0) SharpenRowsGated(luma, s.preNarrowH, s.preWideH, RowDither::byRow);
    }

    void KeepSize(const ImagePlanes& target) {
        UnscaledScratch scratch;
        EnhanceUnscaled(target, work, filter.taps, engine.stages.postNarrowV, scratch, plainKernels);
        CopyPlane(target.second, work.planes.second);
        CopyPlane(target.third, work.planes.third);
    }
    void ScaleRows(const ImagePlanes& target, const SourceImage& from, const SharpenParams& cross) {
        PlainScaleRows(target.luma, from.planes.luma, from.end, PlanRows(engine, filter, cross));
        PlainScaleChromaRows(target.second, from.planes.second, filter.chromaOdd);
        PlainScaleChromaRows(target.third, from.planes.third, filter.chromaOdd);
    }
    void ScaleColumns(const ImagePlanes& target, const SourceImage& from) {
        PlainScaleColumns(target.luma, from.planes.luma, from.end, PlanColumns(engine));
        PlainScaleChromaColumns(target.second, from.planes.second);
        PlainScaleChromaColumns(target.third, from.planes.third);
    }
    void ScaleRowsFirst(const ImagePlanes& target) {
        WorkingImage half;
        half.Resize(3 * work.planes.luma.width / 2, work.planes.luma.height);
        ScaleRows(half.Planes(), work, {});
        ScaleColumns(target, SourceOf(half));
    }
    void ScaleColumnsFirst(const ImagePlanes& target) {
        WorkingImage half;
        half.Resize(work.planes.luma.width, 3 * work.planes.luma.height / 2);
        ScaleColumns(half.Planes(), work);
        ScaleRows(target, SourceOf(half), {});
    }

    EnhancementEngine engine;
    ScaleModes modes;
    WorkingImage copy;
    SourceImage work;  // the source, or the copy once a stage works in place
    PostFilter filter;
    NoiseReduction reduction;
};

class PassInModes : public testing::TestWithParam<std::tuple<int32_t, int32_t>> {
protected:
    /// Runs the engine and the plain pass on one picture; the decoder's frame must survive.
    testing::AssertionResult EqualsThePlainPass(const EngineSettings& settings, int32_t width, int32_t height) {
        const DecodedPicture picture(width, height, width + 3, Texture::soft, 5);
        const std::string before = picture.Bytes();
        EnhancementEngine engine;
        static_cast<EngineSettings&>(engine) = settings;
        FrameRecord frame;
        WorkingImage actual, expected;
        float aspect = 1.0F;
        FrameInfo info;
        if (EnhancementPass(engine, frame, picture.Source(), {&actual, nullptr}, aspect, info, allPlanes,
                            scalarKernels) != 1)
            return testing::AssertionFailure() << "nothing written";
        if (picture.Bytes() != before) return testing::AssertionFailure() << "the decoder's frame has changed";
        expected.Resize(actual.Planes().luma.width, actual.Planes().luma.height);
        PlainPass(settings, picture.Source()).Run(expected.Planes());
        return SamePictures(actual.Planes(), expected.Planes());
    }

    EngineSettings Settings() const {
        EngineSettings settings;
        settings.horizontalMode = std::get<0>(GetParam()) != 0 ? 1 : 0;
        settings.verticalMode = std::get<0>(GetParam()) == 2 ? 1 : 0;
        settings.verticalFirst = std::get<1>(GetParam());
        settings.sharpness = -1.5F;
        return settings;
    }
};

TEST_P(PassInModes, RunsNoiseReductionOfAllStagesOnBothAxes) {
    for (const float level : {1.0F, 3.5F})
        for (int16_t rows = 0; rows <= 3; ++rows)
            for (int16_t columns = 0; columns <= 3; ++columns)
                for (const bool gated : {false, true}) {
                    EngineSettings settings = Settings();
                    settings.noiseReduction = level;
                    settings.noiseStagesH = rows;
                    settings.noiseStagesV = columns;
                    settings.gatedSharpen = gated ? 1 : 0;
                    EXPECT_TRUE(EqualsThePlainPass(settings, 44, 22))
                        << "level " << level << ", stages " << rows << " and " << columns << ", gated " << gated;
                }
}

TEST_P(PassInModes, RunsTheStagesThatTheStartValuesLeaveOff) {
    const std::pair<const char*, void (*)(EngineSettings&)> cases[] = {
        {"start-up values", [](EngineSettings&) {}},
        {"gains driven by the strength", [](EngineSettings& s) { s.curveSharpening = 1; }},
        {"with coring", [](EngineSettings& s) { s.curveSharpening = s.coringLevel = 1; }},
        {"booster", [](EngineSettings& s) { s.detailBoostA = s.detailBoostB = 12; }},
        {"simple limiter", [](EngineSettings& s) { s.edgeStageMode = 1; }},
        {"no limiter", [](EngineSettings& s) { s.edgeStageMode = 0; }},
        {"base gain, wide gains kept", [](EngineSettings& s) { s.baseDetailGain = 3, s.wideDetailMode = 1; }},
        {"even filter", [](EngineSettings& s) { s.filterShapes.fill(1); }},
        {"below the level tables", [](EngineSettings& s) { s.sharpenScheme = 1; }},
        {"trimmed", [](EngineSettings& s) { s.spectrumTrim = 1; }},
    };
    for (const auto& [name, set] : cases)
        for (const auto& [width, height] : {std::pair{40, 33}, {43, 17}, {45, 16}, {54, 10}}) {
            EngineSettings settings = Settings();
            set(settings);
            EXPECT_TRUE(EqualsThePlainPass(settings, width, height)) << name << ", " << width << " x " << height;
        }
}

std::string ModeName(const testing::TestParamInfo<std::tuple<int32_t, int32_t>>& mode) {
    const char* const names[] = {"Unscaled", "Rows", "BothAxes"};
    return std::string(names[std::get<0>(mode.param)]) + (std::get<1>(mode.param) != 0 ? "ColumnsFirst" : "RowsFirst");
}

INSTANTIATE_TEST_SUITE_P(EveryMode, PassInModes, testing::Combine(testing::Range(0, 3), testing::Range(0, 2)),
                         ModeName);

}  // namespace
}  // namespace clarivex
