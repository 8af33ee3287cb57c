#include "engine/enhancement_pass.h"

#include <gtest/gtest.h>

#include "tests/support/crc32.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

/// A pass of fresh settings over the same picture again and again.
class Pass : public testing::Test {
protected:
    PassResult Run(const DecodedPicture& picture) {
        const PlaneView luma = picture.Planes().luma;
        const PassPlan plan = MakePassPlan(settings, {luma.width, luma.height}, request);
        image.Resize(plan.target.width, plan.target.height);
        return RunPass(plan, picture.Source(), image.Planes(), state, scalarKernels);
    }

    EngineSettings settings;
    PassRequest request;
    EngineState state;
    WorkingImage image;
};

TEST_F(Pass, LeavesTheTargetOfPlanesThatAreNotWritten) {
    const DecodedPicture picture(8, 12, 8, Texture::soft, 1);
    settings.frame.horizontalMode = AxisScale::twofold;
    for (const bool columnsFirst : {false, true}) {
        settings.order.verticalFirst = columnsFirst;
        image = TestImage(16, 18, Texture::hard, 2);
        const WorkingImage before = TestImage(16, 18, Texture::hard, 2);
        EXPECT_TRUE(Run(picture).planesWritten);
        EXPECT_TRUE(SameSamples(image.Planes().luma, before.Planes().luma));
        EXPECT_FALSE(SameSamples(image.Planes().third, before.Planes().third));
    }
}

TEST_F(Pass, WritesThePlanesNamedUnlessOneAxisIsScaled) {
    const DecodedPicture picture(40, 20, 40, Texture::soft, 1);
    settings.frame.sharpness = -1.0F;
    request.planes = secondPlane;
    for (const auto& [modes, whole] : {std::pair{ScaleModes{}, false},
                                       {ScaleModes{AxisScale::threeHalves, AxisScale::threeHalves}, false},
                                       {ScaleModes{AxisScale::threeHalves, AxisScale::none}, true}}) {
        settings.frame.horizontalMode = modes.horizontal;
        settings.frame.verticalMode = modes.vertical;
        const int32_t width = Scaled(40, modes.horizontal), height = Scaled(20, modes.vertical);
        image = TestImage(width, height, Texture::hard, 2);
        const WorkingImage before = TestImage(width, height, Texture::hard, 2);
        Run(picture);
        EXPECT_EQ(!SameSamples(image.Planes().luma, before.Planes().luma), whole);
        EXPECT_FALSE(SameSamples(image.Planes().second, before.Planes().second));
        EXPECT_EQ(!SameSamples(image.Planes().third, before.Planes().third), whole);
    }
}

TEST_F(Pass, AnalysesAFrameOnce) {
    const DecodedPicture picture(200, 150, 200, Texture::soft, 1);
    const float followed = (Run(picture), state.lighting.trackedWhite);
    EXPECT_LT(followed, 235);
    state.lighting = {};
    request.correction.emplace().lumaGain = 7.0F;
    EXPECT_EQ(Run(picture).correction.lumaGain, 7.0F) << "from the pass before";
    EXPECT_EQ(state.lighting.trackedWhite, 235);
    request.lightingAdoptNow = true;
    Run(picture);
    EXPECT_LT(state.lighting.trackedWhite, followed) << "adopted at once, whatever a pass before has told";
}

TEST_F(Pass, DesignsTapsWhenTheyAreDirty) {
    const DecodedPicture picture(40, 20, 40, Texture::soft, 1);
    Run(picture);
    const TapSet before = state.taps.vertical.b;
    settings.frame.sharpness = -3.0F;
    Run(picture);
    EXPECT_EQ(state.taps.vertical.b, before);
    state.filtersDirty = true;
    Run(picture);
    EXPECT_NE(state.taps.vertical.b, before);
    EXPECT_FALSE(state.filtersDirty);
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
    {"another tuning set of the twofold modes", [](EngineSettings& s) { s.order.tuningSet = TuningSet::second; },
     {0x0edf7197, 0x0b7d1aa1, 0x703202dd, 0x7db1de22, 0xe5030338, 0x0299bc35, 0xe719ddab}},
    {"larger samples last", [](EngineSettings& s) { s.detail.columnRankMode = RankStage::larger; },
     {0x0edf7197, 0x0b7d1aa1, 0x703202dd, 0x7db1de22, 0x5bfb8d11, 0x2df8d817, 0x66f570ee}},
    {"smaller samples last", [](EngineSettings& s) { s.detail.columnRankMode = RankStage::smaller; },
     {0x0edf7197, 0x0b7d1aa1, 0x703202dd, 0x7db1de22, 0x50c2223c, 0xae7e8c29, 0x66f570ee}},
    {"gains driven by the strength, with coring", [](EngineSettings& s) { s.detail.curveSharpening = true; s.detail.coringLevel = 1; },
     {0xe26a032e, 0xe483888c, 0x8b4fd20e, 0xeb31dc99, 0x132061e6, 0x57495bd1, 0x66f570ee}},
    {"booster", [](EngineSettings& s) { s.detail.detailBoostA = s.detail.detailBoostB = 12; },
     {0x0edf7197, 0x25da99c7, 0x23e8a410, 0xf7bf3f52, 0x467ebd21, 0x2d76fe49, 0x66f570ee}},
    {"simple limiter", [](EngineSettings& s) { s.edges.edgeStageMode = EdgeStage::simple; },
     {0x0edf7197, 0x8beda00d, 0x78c884bd, 0x6327cdef, 0xf4c8b541, 0xea0d21bb, 0x8ee4ef05}},
    {"no limiter", [](EngineSettings& s) { s.edges.edgeStageMode = EdgeStage::none; },
     {0x0edf7197, 0x62508f45, 0x32696a83, 0x815306aa, 0x7b523fe2, 0xb307f350, 0x8ee4ef05}},
    {"base gain, wide gains kept", [](EngineSettings& s) { s.detail.baseDetailGain = 3; s.detail.wideDetailMode = WideDetail::aboveKnee; },
     {0x1acad580, 0x1a90e906, 0x46cf468f, 0x9d8a3249, 0x4cc62392, 0x27d59900, 0x66f570ee}},
    {"even filter", [](EngineSettings& s) { s.detail.filterShapes.fill(FilterShape::evenSinc); },
     {0xcdd1c7fb, 0xb0bebadf, 0x7453fabf, 0x878cebed, 0x220f5a07, 0xeacf07e4, 0x66f570ee}},
    {"below the level tables", [](EngineSettings& s) { s.detail.sharpenScheme = SharpenScheme::detailGains; },
     {0x5de7aae0, 0xe670f243, 0x5dce4814, 0x8f002cb3, 0x061c0bfc, 0xdd34fa39, 0xb2886a74}},
    {"trimmed", [](EngineSettings& s) { s.prototype.spectrumTrim = SpectrumTrim::toFive; },
     {0x0edf7197, 0x29a3fc33, 0xea976f42, 0xb6bd2e52, 0xccc26b5e, 0xd5ac69c4, 0xbdb8f3b4}},
    {"trimmed further, another window and cutoff",
     [](EngineSettings& s) { s.prototype.spectrumTrim = SpectrumTrim::toFour; s.prototype.windowKind = WindowKind::none; s.prototype.kernelCutoff = 0; },
     {0x0edf7197, 0x29a3fc33, 0x8ed39b1c, 0x1b8d3493, 0x4b4c0ce1, 0x29b7385f, 0xbdb8f3b4}},
    {"noise reduction", [](EngineSettings& s) { s.noise.noiseReduction = 1.0F; },
     {0x99a3435a, 0xac007b0f, 0xf7d065be, 0x44a99664, 0xff4a523f, 0x3a30968d, 0xac05d7cb}},
    {"chroma smoothed too", [](EngineSettings& s) { s.noise.noiseReduction = 3.5F; },
     {0x10a730f3, 0xa9d7e4c4, 0x593f4fe8, 0x25c0daf7, 0x1059815c, 0xdd4e3ea9, 0xac05d7cb}},
    {"gates closed to it", [](EngineSettings& s) { s.noise.noiseReduction = 1.0F; s.noise.gatedSharpen = false; },
     {0xa9986881, 0xfcde7ab7, 0x13f7ffb3, 0x86181c02, 0x9215e593, 0x87e47129, 0xac05d7cb}},
};
// clang-format on

/// One picture through a new engine; the decoder's frame must survive.
uint32_t ContinueDigest(uint32_t digest, const EngineSettings& settings, int32_t width, int32_t height) {
    const DecodedPicture picture(width, height, width + 3, Texture::soft, 5);
    const std::string before = picture.Bytes();
    EngineState state;
    WorkingImage image;
    const PassPlan plan = MakePassPlan(settings, {width, height}, {});
    image.Resize(plan.target.width, plan.target.height);
    EXPECT_TRUE(RunPass(plan, picture.Source(), image.Planes(), state, scalarKernels).planesWritten);
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
            settings.frame.horizontalMode = static_cast<AxisScale>(ways[way][0]);
            settings.frame.verticalMode = static_cast<AxisScale>(ways[way][1]);
            settings.order.verticalFirst = ways[way][2] != 0;
            settings.frame.sharpness = -1.5F;
            const int32_t combinations = settings.noise.noiseReduction > 0 ? 16 : 1;
            uint32_t digest = 0;
            for (int32_t stages = 0; stages < combinations; ++stages)
                for (const auto& [width, height] : {std::pair{40, 33}, {43, 17}, {45, 16}, {54, 10}}) {
                    settings.noise.noiseStagesH = stages / 4;
                    settings.noise.noiseStagesV = stages % 4;
                    digest = ContinueDigest(digest, settings, width, height);
                }
            EXPECT_EQ(digest, test.digests[way]) << test.name << ", way " << way;
        }
}

constexpr TimingClass kind = TimingClass::bothAxes;

void Note(TimingBlock& block, std::initializer_list<int64_t> durations, int32_t width = 64, int32_t height = 48) {
    for (const int64_t cycles : durations) block.Note(kind, {width, height}, cycles);
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
