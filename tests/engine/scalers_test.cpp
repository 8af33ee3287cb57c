// The scalers of luma, which work in strips and rows in passing, against their plain forms over the whole picture; and
// the split view.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "algorithms/detail_arithmetic.h"
#include "engine/picture_scaler.h"
#include "engine/sleeping/chroma_doubling.h"
#include "tests/engine/plain_scalers.h"
#include "tests/support/sharpen_curve.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr DetailTaps odd7{0, 0, 0, 0, 0, 138, 385, -3321, 13756, -3321, 385, 138};
constexpr DetailTaps even8{0, 0, 0, 0, 332, 443, -7749, 11070, 11070, -7749, 443, 332};
constexpr DetailTaps even12{0, 0, 0, 286, -1058, 3175, -7235, 8928, 8928, -7235, 3175, -1058, 286};
constexpr DetailTaps even16{106, 106, -318, -530, 1019, 20, -4619, 8312, 8312, -4619, 20, 1019, -530, -318, 106, 106};
constexpr EdgeLimits otherLimits{.gain = 37, .deadZone = 12, .outerWeight = 90, .slope = 600, .offset = 3, .margin = 5};

/// Two forms of a scaler over the same picture, which ends with the memory unless a pre-stage needs room to work in.
/// Of the target some of the columns beside the picture are compared, too, and all rows below it.
struct Trial {
    int32_t width, height;
    Texture texture;
    const KernelTable& kernels;

    template <class Scale, class PlainScale>
    void ExpectSame(const char* name, bool inWorkingImage, int32_t columns, int32_t columnsBeside, int32_t rows,
                    Scale scale, PlainScale plainScale) const {
        const WorkingImage images[] = {Image(width, height, 3), Image(width, height, 3)};
        const DecodedPicture picture(2 * width, 2 * height, 2 * width, texture, 3);
        const auto source = [&](const WorkingImage& image) {
            return inWorkingImage ? SourceOf(image)
                                  : SourceImage{{picture.Planes().third, {}, {}}, picture.Source().end, {}};
        };
        const WorkingImage actual = Image(columns, rows, 1), expected = Image(columns, rows, 1);
        const Plane& to = actual.Planes().luma;
        scale(to, source(images[0]));
        plainScale(expected.Planes().luma, source(images[1]));
        ASSERT_TRUE(SameSamples(to, expected.Planes().luma, columns + columnsBeside, rows + stripSize))
            << name << ", " << kernels.name << ", " << width << " x " << height << " to " << columns << " x " << rows;
    }

private:
    WorkingImage Image(int32_t columns, int32_t rows, uint32_t seed) const {
        return TestImage(columns, rows, texture, seed);
    }
};

/// test(trial) for pictures of many sizes, around those of strips and groups, at every width of the kernels.
template <class Test>
void ForEachTrial(Test test) {
    ForEachRunnableTable([&](const KernelTable& kernels) {
        for (int32_t size = 1; size <= 40; size += size < 24 ? 1 : 5)
            for (const auto& [width, height] : {std::pair{size, 17}, {size + 3, size}, {9 * size, 1 + size % 5}})
                test(Trial{width, height, (width + height) % 2 == 0 ? Texture::hard : Texture::soft, kernels});
    });
}

SharpenCoefficients Gains(float base, float extra, float knee, float wideScale) {
    return DeriveSharpenCoefficients(Curve(base, extra, knee), Curve(base, extra, knee), 1.0F, wideScale);
}

PreStage PreStageOf(bool gated, PreKernel kernel, float wideScale) {
    return {gated, kernel, gated ? Gains(-3, 3.5F, 2, wideScale) : Gains(-500, 500, 2, wideScale)};
}

struct RowCase {
    const char* name;
    void (*set)(RowStages&);
};

void SetDetail(RowStages& stages) {
    stages.detailOn = true;
    stages.detailGains = Gains(0.5F, 0.5F, 3.0F, 256.0F);
}
void SetPostFilter(RowStages& stages, const DetailTaps& taps) {
    stages.postFilterOn = true;
    stages.postTaps = taps;
}
void SetBooster(RowStages& stages) {
    stages.boosterOn = true;
    stages.booster = {6, 40};
}
void SetCross(RowStages& stages) {
    stages.crossOn = true;
    stages.cross = {3, 5, 60};
}

// clang-format off
constexpr RowCase rowCases[] = {
    {"resampler alone", [](RowStages& s) { s.edgeStage = EdgeStage::none; }},
    {"simple limiter", [](RowStages& s) { s.edgeStage = EdgeStage::simple; }},
    {"full limiter of other values", [](RowStages& s) { s.edgeLimits = otherLimits; }},
    {"post filter", [](RowStages& s) { SetPostFilter(s, odd7); }},
    {"post filter alone", [](RowStages& s) { SetPostFilter(s, odd7); s.edgeStage = EdgeStage::none; }},
    {"even filter of 8 taps", [](RowStages& s) { SetPostFilter(s, even8); }},
    {"even filter of 12 taps, three passes", [](RowStages& s) { SetPostFilter(s, even12); s.evenFilterPasses = 3; }},
    {"even filter of 16 taps", [](RowStages& s) { SetPostFilter(s, even16); }},
    {"detail stage", [](RowStages& s) { SetDetail(s); }},
    {"detail stage and post filter", [](RowStages& s) { SetDetail(s); SetPostFilter(s, odd7); }},
    {"booster", [](RowStages& s) { SetBooster(s); SetPostFilter(s, odd7); }},
    {"smaller of two", [](RowStages& s) { SetPostFilter(s, even12); s.rankStage = RankStage::smaller; }},
    {"larger of two", [](RowStages& s) { s.rankStage = RankStage::larger; }},
    {"cross stage", [](RowStages& s) { SetCross(s); s.edgeStage = EdgeStage::none; }},
    {"narrow pre-stage", [](RowStages& s) { s.preStage = PreStageOf(false, PreKernel::narrow, 256); }},
    {"knee pre-stage", [](RowStages& s) { s.preStage = PreStageOf(false, PreKernel::knee, 256); }},
    {"everything", [](RowStages& s) {
         s.preStage = PreStageOf(true, PreKernel::knee, 256); SetDetail(s); SetPostFilter(s, even12); SetBooster(s); SetCross(s); }},
};
// clang-format on

TEST(Scalers, RowsEqualTheWholePicture) {
    ForEachTrial([](const Trial& trial) {
        for (const RowCase& test : rowCases)
            for (const AxisScale scale : {AxisScale::threeHalves, AxisScale::twofold}) {
                if (scale == AxisScale::twofold && trial.width < shortestDoubledRow) continue;
                const int32_t columns = Scaled(trial.width, scale);  // packed output shows one more if odd
                RowStages stages;
                stages.scale = scale;
                stages.taps = UsualTaps();
                stages.twofoldTaps = UsualTwofoldTaps();
                test.set(stages);
                RowScratch scratch;
                trial.ExpectSame(
                    test.name, stages.preStage.IsOn(), columns, columns % 2, trial.height,
                    [&](const Plane& to, const SourceImage& from) {
                        ScaleLumaStrips(to, from.Luma(), stages, scratch, trial.kernels);
                    },
                    [&](const Plane& to, const SourceImage& from) { PlainScaleRows(to, from.Luma(), stages); });
            }
    });
}

struct ColumnCase {
    const char* name;
    bool gated;
    PreKernel kernel;
    bool cross;
    bool strongTaps;  // sums that saturate
};

constexpr ColumnCase columnCases[] = {
    {"resampler", false, PreKernel::none, false, false}, {"strong taps", false, PreKernel::none, false, true},
    {"narrow", false, PreKernel::narrow, false, false},  {"knee", false, PreKernel::knee, false, false},
    {"gated", true, PreKernel::none, false, false},      {"everything", true, PreKernel::knee, true, true}};

TEST(Scalers, ColumnsEqualTheWholePicture) {
    ForEachTrial([](const Trial& trial) {
        for (const ColumnCase& test : columnCases) {
            ColumnStages stages;
            stages.taps = UsualTaps();
            if (test.strongTaps) stages.taps.b = {8000, -20000, 20000, 32000, 20000, -20000, -20000, -3680};
            stages.preStage = PreStageOf(test.gated, test.kernel, 1);
            stages.crossOn = test.cross;
            stages.cross = {3, 5, 60};
            ColumnScratch scratch;
            trial.ExpectSame(
                test.name, true, trial.width, 0, 3 * trial.height / 2,
                [&](const Plane& to, const SourceImage& from) {
                    ScaleLumaStrips(to, from.Luma(), stages, scratch, trial.kernels);
                },
                [&](const Plane& to, const SourceImage& from) { PlainScaleColumns(to, from.Luma(), stages); });
        }
    });
}

TEST(Scalers, BothAxesTwiceEqualTheWholePlanes) {
    ForEachTrial([](const Trial& trial) {
        for (const auto& taps : {DetailTaps{}, even8, even12, even16}) {
            WideStages stages;
            stages.taps = UsualTwofoldTaps();
            stages.limitEdges = taps != even8;
            if (taps == even12) stages.edgeLimits = otherLimits;
            stages.postFilterOn = taps != DetailTaps{};
            stages.rowTaps = taps;
            stages.columnTaps = HalvePostTaps(taps);
            WideScratch scratch;
            trial.ExpectSame(
                "both axes", false, 2 * trial.width, -2 * trial.width & 63, 2 * trial.height,
                [&](const Plane& to, const SourceImage& from) {
                    ScaleBothTwice(to, from.planes.luma, stages, scratch, trial.kernels);
                },
                [&](const Plane& to, const SourceImage& from) { PlainScaleBothTwice(to, from.planes.luma, stages); });
        }
    });
}

TEST(Scalers, ChromaStaysInsideATargetThatIsTooNarrowAndTooLow) {
    for (int32_t width = 1; width <= 40; ++width)
        for (const bool chromaOdd : {false, true}) {
            const DecodedPicture picture(2 * width, 2 * width + 4, 2 * width, Texture::hard, 5);
            const PlaneView source = picture.Planes().third;
            constexpr uint8_t guard = 0xA5;
            std::vector<uint8_t> memory(static_cast<size_t>(2 * width * (width + 10)), guard);
            const Plane narrow{memory.data(), width, source.height, width}, low{memory.data(), width, width + 1, width};
            SlackRow<uint8_t> scratch;
            ScaleChromaRows(narrow, source, chromaOdd, scratch, scalarKernels);
            DoubleChromaRows(narrow, source, chromaOdd, scratch, scalarKernels);
            EXPECT_EQ(std::count(memory.begin() + width * narrow.height, memory.end(), guard), width * (width + 18));
            ScaleChromaColumns(low, source, picture.Source().end, scratch, scalarKernels);
            DoubleChromaColumns(low, source, chromaOdd, scalarKernels);
            EXPECT_EQ(std::count(memory.begin() + width * narrow.height, memory.end(), guard), width * (width + 18));
        }
}

struct SplitView {
    int32_t width;
    void (*scale)(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source);
    int32_t sourceColumn;  // from which on it is enlarged
    int32_t targetColumn;  // and where that goes
};

template <AxisScale scale>
void ScaleRows(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source) {
    RowStages stages;
    stages.scale = scale;
    stages.taps = UsualTaps();
    stages.twofoldTaps = UsualTwofoldTaps();
    scaler.ScaleHorizontal(target, source, stages, false, lumaPlane);
}

void ScaleColumns(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source) {
    ColumnStages stages;
    stages.taps = UsualTaps();
    scaler.ScaleVertical(target, source, stages, lumaPlane);
}

constexpr SplitView splitViews[] = {
    {200, ScaleRows<AxisScale::threeHalves>, 96, 144},
    {200, ScaleRows<AxisScale::twofold>, 96, 192},
    {200, ScaleColumns, 96, 96},
    {4, ScaleRows<AxisScale::threeHalves>, 0, 0},  // too narrow to be split
};

ImagePlanes LumaFrom(const WorkingImage& image, int32_t column) {
    ImagePlanes planes = image.Planes();
    planes.luma.data += column;
    planes.luma.width -= column;
    return planes;
}

TEST(Scalers, ASplitViewEnlargesTheRightPartAndShowsTheFrameLeftOfIt) {
    ScalerScratch scratch;
    for (const SplitView& view : splitViews) {
        const WorkingImage source = TestImage(view.width, 8, Texture::soft, 1);
        const WorkingImage target = TestImage(2 * view.width, 12, Texture::hard, 2);
        const WorkingImage plain = TestImage(2 * view.width, 12, Texture::hard, 2);
        const PlaneView frame = source.Planes().luma;
        PictureScaler split(scratch, scalarKernels, &frame), whole(scratch, scalarKernels, nullptr);
        view.scale(split, target.Planes(), SourceOf(source));
        view.scale(whole, LumaFrom(plain, view.targetColumn), {LumaFrom(source, view.sourceColumn), source.End(), {}});
        for (int32_t y = 0; y < 12; ++y)
            for (int32_t x = 0; x < 2 * view.width; ++x) {
                const uint8_t left = y < 8 && x < frame.width ? frame.Row(std::min(y, 7))[x] : uint8_t{16};
                const uint8_t expected = x < view.targetColumn ? left : plain.Planes().luma.Row(y)[x];
                ASSERT_EQ(target.Planes().luma.Row(y)[x], expected) << &view - splitViews << ": " << x << ", " << y;
            }
    }
}

}  // namespace
}  // namespace clarivex
