#include "engine/enhancement_pass.h"

#include <gtest/gtest.h>

#include "engine/strength.h"
#include "tests/support/crc32.h"
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

TEST_F(Pass, LeavesTheLargestPicturesAloneUnlessToldOtherwise) {
    engine.sharpness = 1.0F;
    EXPECT_EQ(RunSize({0, 0}, 1440, 859), 1);
    EXPECT_EQ(info.noiseAmplitude, 0.75F);
    EXPECT_EQ(engine.stages.bypassActive, 0);
    image.Resize(5, 5);
    engine.noiseReduction = 3.0F;
    const float black = engine.lighting.trackedBlack;
    engine.lightingAdoptNow = 1;
    info = {};
    EXPECT_EQ(RunSize({1, 1}, 1440, 860), 0);
    EXPECT_EQ(info.noiseAmplitude, 0);
    EXPECT_EQ(info.writtenWidth, 0);
    EXPECT_EQ(engine.stages.bypassActive, 1);
    EXPECT_EQ(engine.sharpness, 0) << "the driver writes it again";
    EXPECT_EQ(image.Planes().luma.width, 5) << "with nothing to write the image stays";
    EXPECT_EQ(engine.lighting.trackedBlack, black) << "and the levels are not analysed";
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
}

TEST_F(Pass, ReportsSizeAndAspectOfWhatItWrote) {
    struct Case {
        ScaleModes modes;
        int32_t height, writtenWidth, writtenHeight;
        float aspect;
    };
    engine.sharpness = 1.0F;
    for (const Case& test : {Case{{1, 1}, 21, 61, 31, 1.0F},
                             {{1, 1}, 1022, 61, 1022, 1.5F},
                             {{0, 1}, 21, 41, 21, 2.0F / 3.0F},
                             {{2, 1}, 21, 82, 31, 4.0F / 3.0F},
                             {{2, 2}, 21, 82, 42, 1.0F}}) {
        aspect = 1.0F;
        EXPECT_EQ(RunSize(test.modes, 41, test.height), 1);
        EXPECT_EQ(info.writtenWidth, test.writtenWidth);
        EXPECT_EQ(info.writtenHeight, test.writtenHeight);
        EXPECT_FLOAT_EQ(aspect, test.aspect);
    }
}

TEST_F(Pass, LeavesLumaAloneThatIsTooNarrowForDoubledRows) {
    for (const int32_t columnsFirst : {0, 1}) {
        engine.verticalFirst = columnsFirst;
        image = TestImage(16, 18, Texture::hard, 2);
        const WorkingImage before = TestImage(16, 18, Texture::hard, 2);
        EXPECT_EQ(RunSize({2, 1}, 8, 12), 1);
        EXPECT_EQ(info.writtenWidth, 0);
        EXPECT_TRUE(SameSamples(image.Planes().luma, before.Planes().luma));
        EXPECT_FALSE(SameSamples(image.Planes().third, before.Planes().third));
    }
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
    engine.lightingAdoptNow = 1;
    Run(picture.Source());
    EXPECT_EQ(engine.lighting.trackedWhite, adopted) << "adopted at once, whatever the cache holds";
    EXPECT_EQ(engine.lightingAdoptNow, 0);
}

/// Settings and the digests of the pictures that they give at each of `ways`.
struct SettingsCase {
    const char* name;
    void (*set)(EngineSettings&);
    uint32_t digests[7];
};

/// Kept size, rows only, both axes, both axes with the columns first, then with twofold rows, then twofold: horizontal
/// and vertical mode, columns first.
constexpr int32_t ways[7][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}, {2, 1, 0}, {2, 1, 1}, {2, 2, 0}};

// clang-format off
constexpr SettingsCase settingsCases[] = {
    {"start-up values", [](EngineSettings&) {},
     {0x0edf7197, 0x0b7d1aa1, 0x703202dd, 0x7db1de22, 0x220f5a07, 0xeacf07e4, 0x66f570ee}},
    {"another tuning set of the twofold modes", [](EngineSettings& s) { s.tuningSet = 1; },
     {0x0edf7197, 0x0b7d1aa1, 0x703202dd, 0x7db1de22, 0xe5030338, 0x0299bc35, 0xe719ddab}},
    {"larger samples last", [](EngineSettings& s) { s.columnRankMode = 1; },
     {0x0edf7197, 0x0b7d1aa1, 0x703202dd, 0x7db1de22, 0x5bfb8d11, 0x2df8d817, 0x66f570ee}},
    {"smaller samples last", [](EngineSettings& s) { s.columnRankMode = -1; },
     {0x0edf7197, 0x0b7d1aa1, 0x703202dd, 0x7db1de22, 0x50c2223c, 0xae7e8c29, 0x66f570ee}},
    {"gains driven by the strength, with coring", [](EngineSettings& s) { s.curveSharpening = s.coringLevel = 1; },
     {0xe26a032e, 0xe483888c, 0x8b4fd20e, 0xeb31dc99, 0x132061e6, 0x57495bd1, 0x66f570ee}},
    {"booster", [](EngineSettings& s) { s.detailBoostA = s.detailBoostB = 12; },
     {0x0edf7197, 0x25da99c7, 0x23e8a410, 0xf7bf3f52, 0x467ebd21, 0x2d76fe49, 0x66f570ee}},
    {"simple limiter", [](EngineSettings& s) { s.edgeStageMode = 1; },
     {0x0edf7197, 0x8beda00d, 0x78c884bd, 0x6327cdef, 0xf4c8b541, 0xea0d21bb, 0x8ee4ef05}},
    {"no limiter", [](EngineSettings& s) { s.edgeStageMode = 0; },
     {0x0edf7197, 0x62508f45, 0x32696a83, 0x815306aa, 0x7b523fe2, 0xb307f350, 0x8ee4ef05}},
    {"base gain, wide gains kept", [](EngineSettings& s) { s.baseDetailGain = 3; s.wideDetailMode = 1; },
     {0x1acad580, 0x1a90e906, 0x46cf468f, 0x9d8a3249, 0x4cc62392, 0x27d59900, 0x66f570ee}},
    {"even filter", [](EngineSettings& s) { s.filterShapes.fill(1); },
     {0xcdd1c7fb, 0xb0bebadf, 0x7453fabf, 0x878cebed, 0x220f5a07, 0xeacf07e4, 0x66f570ee}},
    {"below the level tables", [](EngineSettings& s) { s.sharpenScheme = 1; },
     {0x5de7aae0, 0xe670f243, 0x5dce4814, 0x8f002cb3, 0x061c0bfc, 0xdd34fa39, 0xb2886a74}},
    {"trimmed", [](EngineSettings& s) { s.spectrumTrim = 1; },
     {0x0edf7197, 0x29a3fc33, 0xea976f42, 0xb6bd2e52, 0xccc26b5e, 0xd5ac69c4, 0xbdb8f3b4}},
    {"trimmed further, another window and cutoff",
     [](EngineSettings& s) { s.spectrumTrim = s.windowKind = 2; s.kernelCutoff = 0; },
     {0x0edf7197, 0x29a3fc33, 0x8ed39b1c, 0x1b8d3493, 0x4b4c0ce1, 0x29b7385f, 0xbdb8f3b4}},
    {"noise reduction", [](EngineSettings& s) { s.noiseReduction = 1.0F; },
     {0x99a3435a, 0xac007b0f, 0xf7d065be, 0x44a99664, 0xff4a523f, 0x3a30968d, 0xac05d7cb}},
    {"chroma smoothed too", [](EngineSettings& s) { s.noiseReduction = 3.5F; },
     {0x10a730f3, 0xa9d7e4c4, 0x593f4fe8, 0x25c0daf7, 0x1059815c, 0xdd4e3ea9, 0xac05d7cb}},
    {"gates closed to it", [](EngineSettings& s) { s.noiseReduction = 1.0F; s.gatedSharpen = 0; },
     {0xa9986881, 0xfcde7ab7, 0x13f7ffb3, 0x86181c02, 0x9215e593, 0x87e47129, 0xac05d7cb}},
};
// clang-format on

/// One picture through a new engine; the decoder's frame must survive.
uint32_t ContinueDigest(uint32_t digest, const EngineSettings& settings, int32_t width, int32_t height) {
    const DecodedPicture picture(width, height, width + 3, Texture::soft, 5);
    const std::string before = picture.Bytes();
    EnhancementEngine engine;
    static_cast<EngineSettings&>(engine) = settings;
    FrameRecord frame;
    WorkingImage image;
    float aspect = 1.0F;
    FrameInfo info;
    EXPECT_EQ(
        EnhancementPass(engine, frame, picture.Source(), {&image, nullptr}, aspect, info, allPlanes, scalarKernels), 1);
    EXPECT_EQ(picture.Bytes(), before);
    for (const Plane& plane : {image.Planes().luma, image.Planes().second, image.Planes().third})
        digest = Crc32(plane, digest);
    return digest;
}

// Noise reduction runs with every number of stages on both axes.
TEST(PassInEveryMode, RunsTheStagesThatTheStartValuesLeaveOff) {
    for (const SettingsCase& test : settingsCases)
        for (size_t way = 0; way < std::size(ways); ++way) {
            EngineSettings settings;
            test.set(settings);
            settings.horizontalMode = ways[way][0];
            settings.verticalMode = ways[way][1];
            settings.verticalFirst = ways[way][2];
            settings.sharpness = -1.5F;
            const int32_t combinations = settings.noiseReduction > 0 ? 16 : 1;
            uint32_t digest = 0;
            for (int32_t stages = 0; stages < combinations; ++stages)
                for (const auto& [width, height] : {std::pair{40, 33}, {43, 17}, {45, 16}, {54, 10}}) {
                    settings.noiseStagesH = static_cast<int16_t>(stages / 4);
                    settings.noiseStagesV = static_cast<int16_t>(stages % 4);
                    digest = ContinueDigest(digest, settings, width, height);
                }
            EXPECT_EQ(digest, test.digests[way]) << test.name << ", way " << way;
        }
}

constexpr TimingClass kind = TimingClass::bothAxes;

void Note(TimingBlock& block, std::initializer_list<int64_t> durations, int32_t width = 64, int32_t height = 48) {
    for (const int64_t cycles : durations) block.Note(kind, width, height, cycles);
}

TEST(TimingBlock, KeepsTheSmallestMeanOfThreeSamplesAndLeavesOutWhatTellsNothing) {
    TimingBlock block;
    Note(block, {10, 0, -5, 20});
    Note(block, {5}, 15, 48);  // too small to be timed, but its size is kept
    EXPECT_EQ(block.Figures(kind).meanCount, 0);
    Note(block, {5});  // the size has changed since: the first of three
    EXPECT_EQ(block.Figures(kind).sampleCount, 1);
    Note(block, {31, 24, 100, 100, 100, 6, 6, 6});
    EXPECT_EQ(block.Figures(kind).bestMean, 6);
    EXPECT_EQ(block.Figures(kind).meanCount, 3);
    EXPECT_EQ(block.Figures(kind).sampleCount, 0);
}

}  // namespace
}  // namespace clarivex
