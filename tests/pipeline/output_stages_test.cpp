// Both output stages under every kind of correction, noise and overlay, in pictures of awkward shapes: pinned, together
// with the bytes around a picture, which they must leave alone.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "pipeline/packed_output.h"
#include "pipeline/planar_output.h"
#include "tests/support/crc32.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

/// Size of the source, of the target, bytes from row to row, and bytes missing in the target's last row.
struct Shape {
    int32_t width, height, targetWidth, targetHeight, stride, missing;
};

constexpr Shape packedShapes[] = {
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

/// The buffer ends with the last chroma sample.
constexpr Shape planarShapes[] = {{32, 8, 32, 8, 32, 0},   {56, 12, 56, 12, 64, 0}, {33, 10, 33, 10, 33, 0},
                                  {33, 9, 33, 9, 36, 0},   {47, 8, 47, 8, 49, 0},   {61, 15, 61, 15, 200, 0},
                                  {45, 15, 48, 22, 52, 0}, {152, 6, 152, 6, 152, 0}};

/// Digests of all shapes, packed and planar.
struct OutputCase {
    const char* name;
    LightingCorrection params;
    float noiseLevel;
    uint32_t packed, planar;
};

constexpr LightingCorrection usual{-0.0022267557F, 1.1149026F, -8.6044168F, 8.1035978e-06F,
                                   1.0016646F,     -0.213083F, 1.0016646F,  -0.213083F};

const OutputCase outputCases[] = {
    {"neutral", {}, 0, 0x5300384d, 0x07a0bb00},
    {"neutral with unseen noise", {}, 0.00005F, 0x5300384d, 0x07a0bb00},
    {"neutral with noise", {}, 0.75F, 0x13e22e4c, 0xc6abd8af},
    {"usual", usual, 0.75F, 0x47dbfcba, 0x115d3f22},
    {"uneven chroma", {0, 1.25F, -20, 0, 1.75F, -90, 0.5F, 70}, 3, 0xdeaa65ba, 0x33bc8964},
    {"folding over", {0.03F, -3.5F, 900, -2e-4F, 3.9F, -1500, -3, 1400}, 9, 0xe530a2f0, 0xa935e522},
};

class OutputStages : public testing::Test {
protected:
    /// An overlay whose rows y with (y · 5 / 3) % 3 == 0 hold random groups, or none at all.
    void MakeOverlay(int32_t width, int32_t height, bool marked) {
        tiles.Resize(width, height);
        tiles.Reallocate(width, height);
        tiles.ClearRectangle({0, 0, width, height});
        tiles.MarkAllRowsEmpty();
        std::mt19937 random(7);
        for (int32_t y = 0; y < height && marked; ++y) {
            if (y * 5 / 3 % 3 != 0) continue;
            tiles.MarkRows(y, y + 1);
            for (int32_t i = 0; i < tiles.Stride(); ++i) {
                const auto bits = static_cast<uint32_t>(random());
                tiles.Group(0, y)[i] = (bits & 0x300) == 0 ? 255 : static_cast<uint8_t>(bits);
            }
        }
    }

    /// The digest of what run(inputs, shape, buffer) leaves of buffers that are longer than told.
    template <size_t count, class Run>
    uint32_t DigestOf(const OutputCase& test, const Shape (&shapes)[count], const KernelTable& kernels, Run run) {
        NoiseGenerator generator;
        NoiseTable noise(generator);
        noise.Build(test.noiseLevel);
        uint32_t digest = 0;
        for (const Shape& shape : shapes)
            for (const bool overlay : {false, true}) {
                noise.offsets = generator.Advance();
                MakeOverlay(shape.targetWidth, shape.targetHeight, overlay);
                std::vector<uint8_t> buffer(static_cast<size_t>(2 * shape.stride * shape.targetHeight), 0xA5);
                run({test.params, tiles, noise, kernels, scratch}, shape, buffer.data());
                digest = Crc32(buffer.data(), buffer.size(), digest);
            }
        return digest;
    }

    OverlayTiles tiles;
    OutputScratch scratch;
};

void WritePacked(const OutputStageInputs& inputs, const Shape& shape, uint8_t* data) {
    const WorkingImage source = TestImage(shape.width, shape.height, Texture::hard, 3);
    const uint8_t* end = data + shape.stride * shape.targetHeight - shape.missing;
    PackedOutputStage({data, shape.targetWidth, shape.targetHeight, shape.stride}, end, source.Planes(), inputs);
}

void WritePlanar(const OutputStageInputs& inputs, const Shape& shape, uint8_t* data) {
    const DecodedPicture source(shape.width, shape.height, shape.width + shape.stride % 5, Texture::hard, 3);
    const int32_t chromaStride = shape.stride / 2;
    const int32_t columns = (shape.targetWidth + 1) / 2;
    const int32_t rows = (shape.targetHeight + 1) / 2;
    uint8_t* second = data + shape.stride * shape.targetHeight;
    uint8_t* third = second + chromaStride * (shape.targetHeight / 2);
    PlanarOutputStage({.luma = {data, shape.targetWidth, shape.targetHeight, shape.stride},
                       .second = {second, columns, rows, chromaStride},
                       .third = {third, columns, rows, chromaStride}},
                      third + chromaStride * (rows - 1) + columns, source.Source().planes, inputs);
}

TEST_F(OutputStages, GiveThePinnedBytesAtEveryWidth) {
    ForEachRunnableTable([&](const KernelTable& kernels) {
        for (const OutputCase& test : outputCases) {
            EXPECT_EQ(DigestOf(test, packedShapes, kernels, WritePacked), test.packed)
                << test.name << ", " << kernels.name;
            EXPECT_EQ(DigestOf(test, planarShapes, kernels, WritePlanar), test.planar)
                << test.name << ", " << kernels.name;
        }
    });
}

TEST_F(OutputStages, DoWithoutAnOverlayThatIsTooNarrowAndWithoutAPicture) {
    const WorkingImage source = TestImage(64, 4, Texture::soft, 3);
    const NoiseGenerator generator;
    NoiseTable noise(generator);
    noise.Build(0.0F);
    MakeOverlay(56, 4, true);
    std::vector<uint8_t> bytes(128 * 4);
    ImagePlanes planes = source.Planes();
    for (int32_t run = 0; run < 2; ++run, planes.luma = {}) {
        PackedOutputStage({bytes.data(), 64, 4, 128}, bytes.data() + bytes.size(), planes,
                          {LightingCorrection(), tiles, noise, scalarKernels, scratch});
        for (int32_t i = 0; i < 256; ++i)
            ASSERT_EQ(bytes[static_cast<size_t>(2 * i)], source.Planes().luma.Row(i / 64)[i % 64]);
    }
}

}  // namespace
}  // namespace clarivex
