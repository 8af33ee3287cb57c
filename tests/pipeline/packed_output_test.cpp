#include "pipeline/packed_output.h"

#include <gtest/gtest.h>

#include "tests/pipeline/output_stage_setup.h"

namespace clarivex {
namespace {

/// The stage sample by sample.
class PlainStage {
public:
    PlainStage(const Plane& to, const uint8_t* targetEnd, const ImagePlanes& from, const OutputStageInputs& stageInputs)
        : target(to), end(targetEnd), source(from), inputs(stageInputs), c(MakeOutputConstants(inputs.params)) {}

    void Run() {
        const int32_t width = (std::min(source.luma.width, target.width) + 1) & ~1;
        const int32_t height = std::min(source.luma.height, target.height);
        const bool useTiles = width * 3 <= inputs.tiles.Stride();
        const bool work = PackedNeedsWork(inputs.params, c, inputs.noise.level);
        const int32_t margin = target.stride > 2 * width ? std::max((target.stride - 2 * width) >> 2, 1) : 0;
        for (int32_t y = 0; y < height + height % 2; ++y) {
            const uint8_t* overlay = useTiles ? inputs.tiles.Row(y) : nullptr;
            const bool pairHasOverlay = useTiles && (overlay != nullptr || inputs.tiles.Row(y ^ 1) != nullptr);
            for (int32_t x = 0; x < width; ++x) {
                const int32_t luma = source.luma.Row(y)[x];
                const int32_t chroma = Chroma(x, y, height);
                const bool copied = !work && !pairHasOverlay;
                Put(y, 2 * x, copied ? Limit(luma) : Luma(luma, x, y, overlay));
                Put(y, 2 * x + 1, copied ? Limit(chroma) : ToneChroma(chroma, x, y, overlay));
            }
            PutBlack(y, width / 2, margin);
        }
        if (height + 1 <= target.height) PutBlack(height, 0, width / 2 + (target.stride > 2 * width ? 1 : 0));
    }

private:
    void Put(int32_t y, int32_t byte, uint8_t value) const {
        if (y < target.height && byte < target.stride && target.Row(y) + byte < end) target.Row(y)[byte] = value;
    }
    void PutBlack(int32_t y, int32_t firstWord, int32_t words) const {
        for (int32_t i = 4 * firstWord; i < 4 * (firstWord + words); ++i) Put(y, i, i % 2 == 0 ? 0x10 : 0x80);
    }

    int32_t Chroma(int32_t x, int32_t y, int32_t height) const {
        const Plane& plane = x % 2 == 0 ? source.third : source.second;
        const int32_t pair = y & ~1;
        const int32_t current = pair / 2;
        const int32_t neighbour = y % 2 == 0 ? current - (pair > 1) : current + (pair < height - 2);
        const int32_t own = plane.Row(current)[x / 2];
        const int32_t mean = (plane.Row(neighbour)[x / 2] + own + 1) >> 1;
        return (mean + own + 1) >> 1;
    }

    uint8_t Luma(int32_t luma, int32_t x, int32_t y, const uint8_t* overlay) const {
        constexpr int32_t plain[2][4] = {{12, 4, 4, 12}, {4, 12, 12, 4}};
        constexpr int32_t blended[2][4] = {{2, 6, 2, 6}, {6, 2, 6, 2}};
        const int32_t sum = Wrap(CurveAt(c, luma) + c.c0 - 512 + 4 * NoiseAt(inputs.noise, x, y).luma);
        if (overlay == nullptr) return Limit(Wrap(sum + plain[y % 2][x % 4]) >> 4);
        const OverlaySample over = OverlayAt(overlay, x);
        return Blend(sum, over.keep, blended[y % 2][x % 4], over.lumaTerm);
    }

    uint8_t ToneChroma(int32_t chroma, int32_t x, int32_t y, const uint8_t* overlay) const {
        constexpr int32_t plain[2][4] = {{4, 12, 12, 4}, {12, 4, 4, 12}};
        constexpr int32_t blended[2][4] = {{2, 6, 6, 2}, {6, 2, 2, 6}};
        const int32_t gain = x % 2 == 0 ? c.gU : c.gV;
        const int32_t offset = x % 2 == 0 ? c.oU : c.oV;
        const int32_t sum = Wrap(High(chroma << 7, gain) + offset - 512 + 4 * NoiseAt(inputs.noise, x, y).chroma);
        if (overlay == nullptr) return Limit(Wrap(sum + plain[y % 2][x % 4]) >> 4);
        const OverlaySample over = OverlayAt(overlay, x);
        return Blend(sum, over.keep, blended[y % 2][x % 4], over.chromaTerm);
    }

    Plane target;
    const uint8_t* end;
    const ImagePlanes& source;
    const OutputStageInputs& inputs;
    OutputConstants c;
};

/// A picture to be written: size of the source, of the target, bytes from row to row, and bytes missing in the last row.
struct Shape {
    int32_t width, height, targetWidth, targetHeight, stride, missing;
};

constexpr Shape shapes[] = {
    {32, 8, 32, 8, 64, 0},      // nothing beside or below
    {49, 13, 56, 12, 112, 0},   // enlarged from 33 x 9
    {50, 12, 56, 12, 115, 3},   // odd stride; the buffer ends with the picture
    {33, 10, 33, 10, 68, 0},    // odd width
    {45, 15, 45, 15, 92, 0},    // odd height without a row below
    {45, 15, 48, 22, 160, 60},  // scaled along its rows only: a black row below
    {45, 14, 48, 22, 160, 0},   // the same with an even height: one black word beside the black row
    {64, 9, 64, 8, 130, 2},     // a margin of half a word
    {150, 6, 152, 6, 304, 0},
};

using PackedOutput = OutputStageTest;

TEST_F(PackedOutput, EqualsThePlainFormAndWritesNothingElse) {
    ForEachRunnableTable([&](const KernelTable& kernels) {
        for (const OutputCase& test : OutputCases())
            for (const Shape& shape : shapes)
                for (const bool overlay : {false, true}) {
                    const WorkingImage source = TestImage(shape.width, shape.height, Texture::hard, 3);
                    const OutputStageInputs inputs =
                        Inputs(test, shape.targetWidth, shape.targetHeight, overlay, kernels);
                    const auto target = [&](uint8_t* data) {
                        return Plane{data, shape.targetWidth, shape.targetHeight, shape.stride};
                    };
                    const auto write = [&](uint8_t* data, const uint8_t* end) {
                        PackedOutputStage(target(data), end, source.Planes(), inputs);
                    };
                    const auto writePlainly = [&](uint8_t* data, const uint8_t* end) {
                        PlainStage(target(data), end, source.Planes(), inputs).Run();
                    };
                    const auto bytes = static_cast<size_t>(shape.stride * shape.targetHeight - shape.missing);
                    ASSERT_TRUE(GiveTheSame(bytes, shape.stride, write, writePlainly))
                        << test.name << ", " << kernels.name << ", width " << shape.width << ", overlay " << overlay;
                }
    });
}

TEST_F(PackedOutput, DoesWithoutAnOverlayThatIsTooNarrowAndWithoutAPicture) {
    const WorkingImage source = TestImage(64, 4, Texture::soft, 3);
    MakeOverlay(tiles, 56, 4, true, 7);
    const OutputStageInputs inputs{neutral, tiles, noise, scalarKernels, scratch};
    std::vector<uint8_t> bytes(128 * 4);
    const Plane target{bytes.data(), 64, 4, 128};
    PackedOutputStage(target, bytes.data() + bytes.size(), source.Planes(), inputs);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 64; ++x) ASSERT_EQ(target.Row(y)[2 * x], source.Planes().luma.Row(y)[x]);
    const std::vector<uint8_t> before = bytes;
    ImagePlanes chromaOnly = source.Planes();
    chromaOnly.luma = {};
    PackedOutputStage(target, bytes.data() + bytes.size(), chromaOnly, inputs);
    EXPECT_EQ(bytes, before);
}

}  // namespace
}  // namespace clarivex
