#include "pipeline/planar_output.h"

#include <gtest/gtest.h>

#include "tests/pipeline/output_stage_setup.h"

namespace clarivex {
namespace {

/// The stage sample by sample.
class PlainStage {
public:
    PlainStage(const ImagePlanes& to, const uint8_t* targetEnd, const ImagePlanes& from,
               const OutputStageInputs& stageInputs)
        : target(to),
          end(targetEnd),
          source(from),
          inputs(stageInputs),
          c(MakeOutputConstants(inputs.params)),
          width(std::min(source.luma.width, target.luma.width)),
          height(std::min(source.luma.height, target.luma.height)),
          useTiles((width + 1) / 2 * 6 <= inputs.tiles.Stride()),
          work(PlanarNeedsWork(inputs.params, inputs.noise.level)) {}

    void Run() {
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) target.luma.Row(y)[x] = Luma(x, y);
            FillMargin(target.luma, y, (width + 1) / 2 * 2, 0x10);
        }
        const int32_t chromaWidth = (width + 1) / 2;
        for (int32_t y = 0; y < height; y += 2) {
            for (int32_t x = 0; x < chromaWidth; ++x) {
                target.second.Row(y / 2)[x] = Chroma(source.second.Row(y / 2)[x], x, 1, y);
                if (Overlay(y) != nullptr) target.third.Row(y / 2)[x] = Chroma(source.third.Row(y / 2)[x], x, 0, y);
            }
            FillMargin(target.second, y / 2, chromaWidth, 0x80);
        }
        for (int32_t y = 0; y < height; y += 2) {
            for (int32_t x = 0; x < chromaWidth && Overlay(y) == nullptr; ++x)
                target.third.Row(y / 2)[x] = Chroma(source.third.Row(y / 2)[x], x, 0, y);
            FillMargin(target.third, y / 2, chromaWidth, 0x80);
        }
    }

private:
    const uint8_t* Overlay(int32_t y) const { return useTiles ? inputs.tiles.Row(y) : nullptr; }

    void FillMargin(const Plane& plane, int32_t y, int32_t first, uint8_t value) const {
        for (int32_t x = first; x < plane.stride; ++x)
            if (plane.Row(y) + x < end) plane.Row(y)[x] = value;
    }

    uint8_t Luma(int32_t x, int32_t y) const {
        constexpr int32_t plain[2][2] = {{4, 12}, {12, 4}};
        constexpr int32_t blended[2][2] = {{2, 6}, {6, 2}};
        const int32_t sample = source.luma.Row(y)[x];
        const uint8_t* overlay = Overlay(y);
        if (!work && overlay == nullptr) return Limit(sample);
        const int32_t sum = Wrap(CurveAt(c, sample) + c.c0 - 512 + 4 * NoiseAt(inputs.noise, x, y).luma);
        if (overlay == nullptr) return Limit(Wrap(sum + plain[y % 2][x % 2]) >> 4);
        const OverlaySample over = OverlayAt(overlay, x);
        return Blend(sum, over.keep, blended[y % 2][x % 2], over.lumaTerm);
    }

    /// slot 0 for the third plane, 1 for the second; y is the even luma row.
    uint8_t Chroma(int32_t sample, int32_t x, int32_t slot, int32_t y) const {
        constexpr int32_t blended[4] = {2, 6, 6, 2};
        const uint8_t* overlay = Overlay(y);
        if (!work && overlay == nullptr) return Limit(sample);
        const int32_t phase = overlay == nullptr ? x % 2 : slot;
        const int32_t scaled = High(sample << 7, phase == 0 ? c.gU : c.gV);
        const int32_t offset = phase == 0 ? c.oU : c.oV;
        if (overlay == nullptr) return Limit(Wrap(scaled + offset + 8) >> 4);
        const int32_t position = 2 * x + slot;
        const int32_t sum = Wrap(scaled + offset - 512 + 4 * NoiseAt(inputs.noise, position, y).chroma);
        const int32_t keep = (OverlayAt(overlay, 2 * x).keep + OverlayAt(overlay, 2 * x + 1).keep) >> 1;
        return Blend(sum, keep, blended[position % 4], OverlayAt(overlay, position).chromaTerm);
    }

    ImagePlanes target;
    const uint8_t* end;
    const ImagePlanes& source;
    const OutputStageInputs& inputs;
    OutputConstants c;
    int32_t width;
    int32_t height;
    bool useTiles;
    bool work;
};

/// A picture and how its rows lie in the output; `shift` moves the source's rows off aligned addresses.
struct Shape {
    int32_t width, height, stride, shift;
};

constexpr Shape shapes[] = {{32, 8, 32, 0}, {56, 12, 64, 1},  {33, 10, 33, 3}, {33, 9, 36, 5},
                            {47, 8, 49, 2}, {61, 15, 200, 7}, {152, 6, 152, 0}};

/// The planes of an output picture in a buffer that ends with the last chroma sample.
ImagePlanes PlanesAt(uint8_t* data, const Shape& shape) {
    const int32_t chromaStride = shape.stride / 2;
    uint8_t* second = data + shape.stride * shape.height;
    uint8_t* third = second + chromaStride * (shape.height / 2);
    const int32_t chromaWidth = (shape.width + 1) / 2;
    const int32_t chromaHeight = (shape.height + 1) / 2;
    return {.luma = {data, shape.width, shape.height, shape.stride},
            .second = {second, chromaWidth, chromaHeight, chromaStride},
            .third = {third, chromaWidth, chromaHeight, chromaStride}};
}

size_t BytesOf(const Shape& shape) {
    const int32_t rows = shape.stride / 2 * (shape.height / 2 + (shape.height + 1) / 2 - 1);
    return static_cast<size_t>(shape.stride * shape.height + rows + (shape.width + 1) / 2);
}

using PlanarOutput = OutputStageTest;

TEST_F(PlanarOutput, EqualsThePlainFormAndWritesNothingElse) {
    ForEachRunnableTable([&](const KernelTable& kernels) {
        for (const OutputCase& test : OutputCases())
            for (const Shape& shape : shapes)
                for (const bool overlay : {false, true}) {
                    const DecodedPicture picture(shape.width, shape.height, shape.width + shape.shift, Texture::hard,
                                                 3);
                    const ImagePlanes& source = picture.Source().planes;
                    const OutputStageInputs inputs = Inputs(test, shape.width, shape.height, overlay, kernels);
                    const auto write = [&](uint8_t* data, const uint8_t* end) {
                        PlanarOutputStage(PlanesAt(data, shape), end, source, inputs);
                    };
                    const auto writePlainly = [&](uint8_t* data, const uint8_t* end) {
                        PlainStage(PlanesAt(data, shape), end, source, inputs).Run();
                    };
                    ASSERT_TRUE(GiveTheSame(BytesOf(shape), shape.stride, write, writePlainly))
                        << test.name << ", " << kernels.name << ", width " << shape.width << ", overlay " << overlay;
                }
    });
}

TEST_F(PlanarOutput, LeavesChromaAloneUnderAnOverlayOnOddRows) {
    const Shape shape{32, 8, 32, 0};
    const DecodedPicture picture(32, 8, 32, Texture::soft, 3);
    tiles.Resize(32, 8);
    tiles.Clear();
    tiles.MarkAllRowsEmpty();
    tiles.MarkRows(3, 4);
    std::memset(tiles.Group(0, 3), 0, static_cast<size_t>(tiles.Stride()));  // black, nothing of the video kept
    std::vector<uint8_t> bytes(BytesOf(shape));
    const ImagePlanes target = PlanesAt(bytes.data(), shape);
    PlanarOutputStage(target, bytes.data() + bytes.size(), picture.Source().planes,
                      {neutral, tiles, noise, scalarKernels, scratch});
    EXPECT_EQ(target.luma.Row(3)[5], 0);
    EXPECT_TRUE(SameSamples({target.luma.data, 32, 3, 32}, {picture.Source().planes.luma.data, 32, 3, 32}));
    EXPECT_TRUE(SameSamples(target.second, picture.Source().planes.second));
    EXPECT_TRUE(SameSamples(target.third, picture.Source().planes.third));
}

}  // namespace
}  // namespace clarivex
