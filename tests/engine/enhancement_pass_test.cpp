#include "engine/enhancement_pass.h"

#include <gtest/gtest.h>

#include "algorithms/sleeping/edge_sharpeners.h"
#include "tests/algorithms/plain_unscaled.h"
#include "tests/engine/plain_chroma.h"
#include "tests/engine/plain_scalers.h"
#include "tests/support/crc32.h"
#include "tests/support/guarded_rows.h"
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

/// What a plan says, done to whole pictures by plain forms, one stage after the other.
class PlainPass {
public:
    PlainPass(const PassPlan& passPlan, const FilterTaps& filterTaps, const SourceImage& from, const ImagePlanes& to)
        : plan(passPlan), taps(filterTaps), source(from), target(to) {
        rows.taps = taps.horizontal;
        rows.sleeping.twofoldTaps = DesignTwofoldTaps(taps.horizontalResponse);
        columns.taps = taps.vertical;
    }

    void Run() {
        if (plan.copiesSource) Smooth();
        LightingState state;
        correction = AnalyseLighting(source.planes, plan.lighting.elapsed, state, scalarKernels);
        if (plan.kind == PassKind::keptSize) KeepSize();
        if (plan.kind == PassKind::rowsOnly) ScaleRows(target, source);
        between.Resize(plan.between.width, plan.between.height);
        if (plan.kind == PassKind::rowsFirst) {
            ScaleRows(between.Planes(), source);
            ScaleColumns(target, SourceOf(between));
        }
        if (plan.kind == PassKind::columnsFirst) {
            ScaleColumns(between.Planes(), source);
            ScaleRows(target, SourceOf(between));
        }
        if (plan.kind == PassKind::doubled) DoubleBoth();
    }

    LightingCorrection correction;

private:
    bool Writes(uint32_t plane) const { return (plan.planes & plane) != 0; }

    void Smooth() {
        PrepareWorkingImage(copy, source.planes, source.end);
        const ImagePlanes& planes = copy.Planes();
        if (plan.smoothsChroma) {
            SharpenColumnsNarrow(planes.second, plan.chroma);
            SharpenRowsNarrow(planes.second, plan.chroma);
            SharpenRowsNarrow(planes.third, plan.chroma);
            SharpenColumnsNarrow(planes.third, plan.chroma);
        }
        const PreStageGains &down = plan.wholeColumns, &along = plan.wholeRows;
        if (down.kernel == PreKernel::narrow) SharpenColumnsNarrow(planes.luma, down.narrow);
        if (down.kernel == PreKernel::knee) SharpenColumnsPlain(planes.luma, down.narrow, down.wide);
        if (down.gated) SharpenColumnsGated(planes.luma, down.narrow, down.wide);
        if (along.kernel == PreKernel::narrow) SharpenRowsNarrow(planes.luma, along.narrow);
        if (along.kernel == PreKernel::knee)
            SharpenRowsKnee(planes.luma, along.narrow, along.wide, false, RowDither::byRow, nullptr);
        if (along.gated) SharpenRowsGated(planes.luma, along.narrow, along.wide, RowDither::byRow);
        source = SourceOf(copy);
    }

    void KeepSize() {
        const DetailTaps& filter = plan.postFilter.taps;
        const SharpenCoefficients gains = DeriveNarrowCoefficients(plan.unscaledColumns);
        const bool copies = !IsSharpenActive(plan.unscaledColumns) && std::count(&filter[4], &filter[12], 0) == 7;
        const CopyBounds bounds{.targetEnd = nullptr, .sourceEnd = source.end};
        if (Writes(lumaPlane) && copies) CopyPlane(target.luma, source.planes.luma, bounds);
        if (Writes(secondPlane)) CopyPlane(target.second, source.planes.second, bounds);
        if (Writes(thirdPlane)) CopyPlane(target.third, source.planes.third, bounds);
        const auto& [width, height] = plan.source;
        if (!Writes(lumaPlane) || copies || width < 9) return;
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x)
                target.luma.Row(y)[x] =
                    static_cast<uint8_t>(PlainUnscaled(source, filter, gains.narrowBase + gains.narrowExtra, x, y));
    }

    void ScaleRows(const ImagePlanes& to, const SourceImage& from) {
        const bool twofold = rows.scale == AxisScale::twofold;
        if (Writes(lumaPlane)) PlainScaleRows(to.luma, from.Luma(), rows);
        const PlainChroma& chroma = twofold ? doubledRows : enlargedRows;
        if (Writes(secondPlane)) chroma.Run(to.second, from.planes.second, plan.postFilter.chromaOdd);
        if (Writes(thirdPlane)) chroma.Run(to.third, from.planes.third, plan.postFilter.chromaOdd);
    }

    void ScaleColumns(const ImagePlanes& to, const SourceImage& from) {
        if (Writes(lumaPlane)) PlainScaleColumns(to.luma, from.Luma(), columns);
        if (Writes(secondPlane)) enlargedColumns.Run(to.second, from.planes.second, false);
        if (Writes(thirdPlane)) enlargedColumns.Run(to.third, from.planes.third, false);
    }

    void DoubleBoth() {
        WideStages stages = plan.wide;
        stages.taps = DesignTwofoldTaps(taps.horizontalResponse);
        PlainScaleBothTwice(target.luma, source.planes.luma, stages);
        between.Resize(2 * plan.source.width, 2 * plan.source.height);
        for (const auto& [to, middle, from] : {std::tuple(target.second, between.Planes().second, source.planes.second),
                                               {target.third, between.Planes().third, source.planes.third}}) {
            const Plane low{middle.data, 2 * from.width, from.height, middle.stride};
            doubledRows.Run(low, from, plan.postFilter.chromaOdd);
            doubledColumns.Run(to, low, plan.postFilter.chromaOdd);
        }
    }

    const PassPlan& plan;
    const FilterTaps& taps;
    SourceImage source;
    const ImagePlanes& target;
    RowStages rows = plan.rows;
    ColumnStages columns = plan.columns;
    WorkingImage copy, between;
};

/// Every group of the settings, most values as they start.
EngineSettings AnySettings(std::mt19937& random) {
    const auto between = [&](int32_t low, int32_t high) { return low + UpTo(random, high - low); };
    const auto oneIn = [&](int32_t count) { return UpTo(random, count - 1) == 0; };
    constexpr AxisScale none = AxisScale::none, half = AxisScale::threeHalves, twice = AxisScale::twofold;
    constexpr ScaleModes pairs[] = {{none, none}, {half, none},  {half, half},
                                    {half, half}, {twice, half}, {twice, twice}};
    EngineSettings s;
    const ScaleModes modes = pairs[UpTo(random, 5)];
    s.frame = {.horizontalMode = modes.horizontal, .verticalMode = modes.vertical};
    s.frame.sharpness = oneIn(6) ? 0 : static_cast<float>(-between(1, 90)) / 10;
    s.order.verticalFirst = oneIn(3);
    s.order.tuningSet = oneIn(3) ? TuningSet::second : TuningSet::first;
    if (oneIn(3)) {
        s.prototype.kernelCutoff = between(0, 90);
        s.prototype.spectrumTrim = static_cast<SpectrumTrim>(between(0, 2));
        s.prototype.windowKind = oneIn(2) ? WindowKind::none : WindowKind::sinc;
    }
    if (oneIn(3)) {
        s.edges = {.edgeStageMode = static_cast<EdgeStage>(between(0, 2)), .edgeGain = between(10, 60)};
        s.edges.edgeDeadZone = between(0, 12);
        s.edges.edgeMargin = between(-4, 9);
        s.edges.wideSlope = between(0, 40);
        s.edges.edgeKernelSelect = !oneIn(3);
    }
    if (oneIn(2)) {
        DetailSettings& d = s.detail;
        d.sharpenScheme = oneIn(2) ? SharpenScheme::detailGains : SharpenScheme::levelTables;
        d.curveSharpening = oneIn(2);
        for (FilterShape& shape : d.filterShapes) shape = static_cast<FilterShape>(between(0, 2));
        d.evenFilterPasses = between(1, 4);
        d.wideDetailMode = oneIn(2) ? WideDetail::aboveKnee : WideDetail::fromZero;
        d.columnRankMode = oneIn(2) ? RankStage::none : oneIn(2) ? RankStage::smaller : RankStage::larger;
        d.baseDetailGain = between(0, 4);
        d.coringLevel = between(0, 2);
        d.detailBoostA = d.detailBoostB = oneIn(2) ? between(1, 20) : 0;
        d.fusedNarrowGain = between(0, 5);
        d.verticalDetailGain = between(0, 5);
    }
    if (oneIn(2))
        s.noise = {static_cast<float>(between(0, 60)) / 10, between(0, 3), between(0, 3), !oneIn(4), oneIn(4)};
    return s;
}

/// A picture in the planes of one twice as wide and high, its luma at the start of the memory or at its very end.
SourceImage PartOf(const DecodedPicture& picture, const FrameSize& size, bool lumaLast) {
    const auto& [first, second, third, owner] = picture.Planes();
    const auto part = [](const Plane& of, int32_t width, int32_t height) {
        return PlaneView{of.data, width, height, of.stride};
    };
    const int32_t width = (size.width + 1) / 2, height = (size.height + 1) / 2;
    return {{part(lumaLast ? third : first, size.width, size.height), part(second, width, height),
             part(lumaLast ? first : third, width, height)},
            picture.Source().end,
            {}};
}

/// A pass and its plain form over one picture: the same samples in all that is visible of a target that held others, and
/// the same levels; a decoder's frame stays as it is. Continues a digest of what came out.
uint32_t ExpectPlainPass(std::mt19937& random, const KernelTable& kernels, uint32_t digest) {
    const FrameSize size{1 + UpTo(random, 69), 1 + UpTo(random, 49)};
    const EngineSettings settings = AnySettings(random);
    PassRequest request;
    request.planes = UpTo(random, 2) == 0 ? static_cast<uint32_t>(UpTo(random, 7)) : allPlanes;
    const PassPlan plan = MakePassPlan(settings, size, request);
    const Texture texture = UpTo(random, 1) == 0 ? Texture::hard : Texture::soft;
    const DecodedPicture picture(2 * size.width, 2 * size.height, 2 * size.width + 2 * UpTo(random, 2), texture, 5);
    const std::string decoded = picture.Bytes();
    const SourceImage source = PartOf(picture, size, UpTo(random, 1) == 0);
    const WorkingImage actual = TestImage(plan.target.width, plan.target.height, Texture::hard, 2);
    const WorkingImage expected = TestImage(plan.target.width, plan.target.height, Texture::hard, 2);
    EngineState state;
    const PassResult result = RunPass(plan, source, actual.Planes(), state, kernels);
    PlainPass plain(plan, state.taps, source, expected.Planes());
    plain.Run();
    EXPECT_TRUE(SamePictures(actual.Planes(), expected.Planes())) << kernels.name << ":\n" << TellPlan(plan);
    EXPECT_EQ(std::tuple(result.planesWritten, result.aspect, result.noiseAmplitude, result.correction.lumaGain),
              std::tuple(plan.Writes(), plan.aspect, plan.noiseAmplitude, plain.correction.lumaGain));
    EXPECT_EQ(picture.Bytes(), decoded);
    for (const Plane& plane : {actual.Planes().luma, actual.Planes().second, actual.Planes().third})
        digest = Crc32(plane, digest);
    return digest;
}

// The digest stands for the numbers behind the plans: tables, gains and taps, which both forms share.
TEST(RunPass, DoesWhatThePlanSaysStageAfterStageWithAnySettings) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        std::mt19937 random(1);
        uint32_t digest = 0;
        for (int32_t trial = 0; trial < 600 && !testing::Test::HasFailure(); ++trial)
            digest = ExpectPlainPass(random, kernels, digest);
        EXPECT_EQ(digest, 0x207391c5U) << kernels.name;
    });
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
