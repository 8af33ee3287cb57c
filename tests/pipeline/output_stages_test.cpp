// Both output stages against a plain form, sample by sample, on random pictures, buffers, corrections, noise and overlays,
// together with the bytes around a picture, which they must leave alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <deque>
#include <random>
#include <vector>

#include "pipeline/output_constants.h"
#include "pipeline/packed_output.h"
#include "pipeline/planar_output.h"
#include "tests/support/guarded_rows.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

int32_t Wrap(int32_t v) { return static_cast<int16_t>(v); }
int32_t MulHigh(int32_t a, int32_t b) { return (Wrap(a) * Wrap(b)) >> 16; }
int32_t Limit(int32_t v) { return std::clamp(v, 0, 255); }

/// What even rows add by column before they round; odd rows add what is left of `unit`.
struct PlainDither {
    int32_t unit;
    int32_t columns[4];
    int32_t At(int32_t x, int32_t y) const { return y % 2 == 0 ? columns[x % 4] : unit - columns[x % 4]; }
};

constexpr PlainDither underLuma{8, {2, 6, 2, 6}}, underChroma{8, {2, 6, 6, 2}};

/// A row that cannot be written behind its stride nor behind the buffer's end.
struct PlainTarget {
    Plane plane;
    const uint8_t* end;

    bool Holds(int32_t y, int32_t x) const { return x < plane.stride && plane.Row(y) + x < end; }
    void Put(int32_t y, int32_t x, int32_t sample) const {
        if (Holds(y, x)) plane.Row(y)[x] = static_cast<uint8_t>(sample);
    }
};

/// The arithmetic that packed and planar pictures share. x is a column of luma or a sample of U and V in turn.
struct PlainTone {
    const OutputStageInputs& inputs;
    int32_t evenColumns;
    OutputConstants constants = MakeOutputConstants(inputs.params);

    const uint8_t* Overlay(int32_t y) const {
        return evenColumns <= inputs.tiles.Stride() / 24 * 8 ? inputs.tiles.Row(y) : nullptr;
    }
    static int32_t Entry(const uint8_t* overlay, int32_t kind, int32_t x) { return overlay[x / 8 * 24 + kind + x % 8]; }
    static int32_t Keep(const uint8_t* overlay, int32_t x) { return 257 * Entry(overlay, 8, x) / 2; }
    static int32_t Noise(const GrainRow& grain, int32_t x) { return grain.words[(grain.firstColumn + x) % 256] - 512; }

    /// Sixteenths without dither.
    int32_t Luma(int32_t sample, int32_t x, int32_t y) const {
        const int32_t q = 128 * sample;
        const int32_t square = 2 * MulHigh(q, constants.c3) + constants.c2;
        const int32_t curve = MulHigh(4 * MulHigh(square, q) + constants.c1, q);
        return curve + constants.c0 + Noise(inputs.noise.LumaGrain(y), x);
    }
    int32_t Chroma(int32_t sample, int32_t x) const {
        return MulHigh(128 * sample, x % 2 == 0 ? constants.gU : constants.gV) +
               (x % 2 == 0 ? constants.oU : constants.oV);
    }
    int32_t NoisyChroma(int32_t sample, int32_t x, int32_t y) const {
        return Chroma(sample, x) + Noise(inputs.noise.ChromaGrain(y), x);
    }

    static int32_t Shown(int32_t sixteenths, int32_t dither) { return Limit(Wrap(sixteenths + dither) >> 4); }
    static int32_t Under(int32_t sixteenths, int32_t keep, int32_t dither, int32_t term) {
        return Limit(Limit(Wrap(MulHigh(sixteenths, keep) + dither) >> 3) + term);
    }
    int32_t LumaUnder(const uint8_t* overlay, int32_t sample, int32_t x, int32_t y) const {
        return Under(Luma(sample, x, y), Keep(overlay, x), underLuma.At(x, y), Entry(overlay, 0, x));
    }
};

/// A pair of rows is copied when the frame changes nothing and neither has an overlay. Chroma leans a quarter towards the
/// row above or below it. Columns are written whole; black words follow each row, and a black row the last.
void PlainPacked(const PlainTarget& target, const PictureView& source, const OutputStageInputs& inputs) {
    constexpr PlainDither lumaDither{16, {12, 4, 4, 12}}, chromaDither{16, {4, 12, 12, 4}};
    const int32_t width = (std::min(source.luma.width, target.plane.width) + 1) / 2 * 2;
    const int32_t height = std::min(source.luma.height, target.plane.height);
    if (width == 0) return;
    const PlainTone tone{inputs, width};
    const bool working = PackedNeedsWork(inputs.params, inputs.noise.level);
    const auto black = [&](int32_t y, int32_t from, int32_t words) {
        for (int32_t i = from; i < from + 4 * words; ++i) target.Put(y, i, i % 2 != 0 ? 128 : 16);
    };
    const int32_t beside = target.plane.stride - 2 * width;
    for (int32_t y = 0; y < std::min((height + 1) / 2 * 2, target.plane.height); ++y) {
        const bool copied = !working && tone.Overlay(y & ~1) == nullptr && tone.Overlay(y | 1) == nullptr;
        const int32_t leaning = y / 2 + (y % 2 != 0 ? 1 : -1);
        const int32_t other = leaning < 0 || leaning >= (height + 1) / 2 ? y / 2 : leaning;
        for (int32_t x = 0; x < width && target.Holds(y, 2 * x + 1); ++x) {
            const PlaneView& plane = x % 2 == 0 ? source.third : source.second;
            const int32_t own = plane.Row(y / 2)[x / 2];
            int32_t chroma = ((own + plane.Row(other)[x / 2] + 1) / 2 + own + 1) / 2;
            int32_t luma = source.luma.Row(y)[x];
            if (const uint8_t* overlay = tone.Overlay(y)) {
                luma = tone.LumaUnder(overlay, luma, x, y);
                chroma = tone.Under(tone.NoisyChroma(chroma, x, y), tone.Keep(overlay, x), underChroma.At(x, y),
                                    tone.Entry(overlay, 16, x));
            } else if (!copied) {
                luma = tone.Shown(tone.Luma(luma, x, y), lumaDither.At(x, y));
                chroma = tone.Shown(tone.NoisyChroma(chroma, x, y), chromaDither.At(x, y));
            }
            target.Put(y, 2 * x, luma);
            target.Put(y, 2 * x + 1, chroma);
        }
        if (beside > 0) black(y, 2 * width, std::max(beside / 4, 1));
    }
    if (height < target.plane.height) black(height, 0, width / 2 + (beside > 0 ? 1 : 0));
}

/// Luma, then the second plane, with both of a row that lies under the overlay, then the third; black up to each stride.
void PlainPlanar(const ImagePlanes& planes, const uint8_t* end, const PictureView& source,
                 const OutputStageInputs& inputs) {
    constexpr PlainDither lumaDither{16, {4, 12, 4, 12}};
    const int32_t chromaWidth = (std::min(source.luma.width, planes.luma.width) + 1) / 2;
    const int32_t height = std::min(source.luma.height, planes.luma.height);
    const PlainTarget luma{planes.luma, end}, second{planes.second, end}, third{planes.third, end};
    const PlainTone tone{inputs, 2 * chromaWidth};
    const bool working = PlanarNeedsWork(inputs.params, inputs.noise.level);
    const auto plainChroma = [&](const Plane& target, const PlaneView& plane, int32_t y) {
        for (int32_t x = 0; x < chromaWidth; ++x) {
            const int32_t sample = plane.Row(y)[x];
            target.Row(y)[x] = static_cast<uint8_t>(working ? tone.Shown(tone.Chroma(sample, x), 8) : sample);
        }
    };
    const auto black = [](const PlainTarget& target, int32_t y, int32_t from, int32_t value) {
        for (int32_t x = from; x < target.plane.stride; ++x) target.Put(y, x, value);
    };
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < 2 * chromaWidth; ++x) {
            const int32_t sample = source.luma.Row(y)[x];
            if (const uint8_t* overlay = tone.Overlay(y))
                luma.Put(y, x, tone.LumaUnder(overlay, sample, x, y));
            else
                luma.Put(y, x, working ? tone.Shown(tone.Luma(sample, x, y), lumaDither.At(x, y)) : sample);
        }
        black(luma, y, 2 * chromaWidth, 16);
    }
    for (int32_t y = 0; y < height; y += 2) {
        const uint8_t* overlay = tone.Overlay(y);
        if (overlay == nullptr) plainChroma(planes.second, source.second, y / 2);
        for (int32_t x = 0; x < 2 * chromaWidth && overlay != nullptr; ++x) {
            const int32_t sample = (x % 2 == 0 ? source.third : source.second).Row(y / 2)[x / 2];
            const int32_t keep = (tone.Keep(overlay, x & ~1) + tone.Keep(overlay, x | 1)) / 2;
            (x % 2 == 0 ? planes.third : planes.second).Row(y / 2)[x / 2] = static_cast<uint8_t>(
                tone.Under(tone.NoisyChroma(sample, x, y), keep, underChroma.At(x, 0), tone.Entry(overlay, 16, x)));
        }
        black(second, y / 2, chromaWidth, 128);
    }
    for (int32_t y = 0; y < height; y += 2) {
        if (tone.Overlay(y) == nullptr) plainChroma(planes.third, source.third, y / 2);
        black(third, y / 2, chromaWidth, 128);
    }
}

/// Frames of every kind.
class OutputStages : public testing::Test {
protected:
    int32_t Any(int32_t low, int32_t high) { return low + UpTo(random, high - low); }

    /// Neutral in a third of all cases, else any, some so strong that words wrap.
    LightingCorrection AnyCorrection() {
        if (Any(0, 2) == 0) return {};
        const float strength = std::array{0.01F, 1.0F, 40.0F}[random() % 3];
        const auto about = [&](float middle, float range) {
            return middle + range * strength * static_cast<float>(Any(-1000, 1000)) / 1000;
        };
        LightingCorrection params;
        params.cubic = about(0, 1e-5F);
        params.square = about(0, 0.002F);
        for (float* gain : {&params.lumaGain, &params.chromaGainU, &params.chromaGainV}) *gain = about(1, 0.2F);
        for (float* offset : {&params.lumaOffset, &params.chromaOffsetU, &params.chromaOffsetV}) *offset = about(0, 30);
        return params;
    }

    /// Of about the size of the picture, or just too narrow for it; empty, or with some rows of any content.
    void MakeOverlay(int32_t width, int32_t height) {
        width = std::max(width + 8 * Any(-1, 1), 1);
        tiles.Resize(width, height);
        tiles.Reallocate(width, height);
        tiles.MarkAllRowsEmpty();
        const bool marked = Any(0, 2) != 0;
        for (int32_t y = 0; y < height && marked; ++y) {
            if (Any(0, 2) == 0) tiles.MarkRows(y, y + 1);
            FillSamples(tiles.Group(0, y), tiles.Stride(), allFills[static_cast<size_t>(Any(2, 4))], 0, 255, random);
        }
    }

    void ComparePacked(const OutputStageInputs& inputs) {
        const WorkingImage source = TestImage(size.width, size.height, Texture::hard, round);
        const PictureView picture = size.empty ? PictureView{} : source.Planes();
        const int32_t bytes = size.stride * size.targetHeight;
        const auto target = [&](uint8_t* data) -> PlainTarget {
            return {{data, size.targetWidth, size.targetHeight, size.stride}, data + bytes - size.missing};
        };
        Compare(
            inputs.kernels, bytes, [&](uint8_t* data) { PlainPacked(target(data), picture, inputs); },
            [&](uint8_t* data) {
                PackedOutput stage(target(data).plane, target(data).end, picture, inputs);
                if (!size.empty) stage.TakeLuma(0, source.Planes().luma);
                stage.Finish();
            });
    }

    /// Luma comes first or last; the buffer ends with the last sample or some bytes behind it.
    void ComparePlanar(const OutputStageInputs& inputs) {
        const DecodedPicture source(size.width, size.height, size.width + size.stride % 5, Texture::hard, round);
        const int32_t stride = size.stride / 2, chromaStride = stride / 2;
        const int32_t columns = (size.targetWidth + 1) / 2, rows = (size.targetHeight + 1) / 2;
        const bool lumaLast = round % 4 == 0;
        const int32_t second = lumaLast ? 0 : stride * size.targetHeight;
        const int32_t third = second + chromaStride * (size.targetHeight / 2);
        const int32_t luma = lumaLast ? third + chromaStride * rows : 0;
        const int32_t end = lumaLast ? luma + stride * (size.targetHeight - 1) + size.targetWidth
                                     : third + chromaStride * (rows - 1) + columns;
        const int32_t bytes = end + size.missing % 4;
        const auto target = [&](uint8_t* data) -> ImagePlanes {
            return {.luma = {data + luma, size.targetWidth, size.targetHeight, stride},
                    .second = {data + second, columns, rows, chromaStride},
                    .third = {data + third, columns, rows, chromaStride}};
        };
        const PictureView& picture = source.Source().planes;
        Compare(
            inputs.kernels, bytes, [&](uint8_t* data) { PlainPlanar(target(data), data + bytes, picture, inputs); },
            [&](uint8_t* data) {
                PlanarOutput stage(target(data), data + bytes, picture, inputs);
                stage.TakeLuma(0, source.Planes().luma);
                stage.Finish();
            });
    }

    template <class Plain, class Stage>
    void Compare(const KernelTable& kernels, int32_t bytes, Plain plain, Stage stage) {
        std::vector<uint8_t> expected(static_cast<size_t>(bytes) + 64, 0xA5), actual = expected;
        plain(expected.data());
        stage(actual.data());
        const auto at = std::mismatch(actual.begin(), actual.end(), expected.begin()).first - actual.begin();
        ASSERT_EQ(actual, expected) << kernels.name << ", byte " << at << " of " << bytes << ", " << size.width << " x "
                                    << size.height << " to " << size.targetWidth << " x " << size.targetHeight
                                    << ", stride " << size.stride << ", missing " << size.missing;
    }

    struct {
        bool empty;
        int32_t width, height, targetWidth, targetHeight, stride, missing;
    } size;
    uint32_t round = 0;
    std::mt19937 random{1};
    OverlayTiles tiles;
    OutputScratch scratch;
};

TEST_F(OutputStages, GiveTheBytesOfThePlainFormAtEveryWidth) {
    const NoiseGenerator generator;
    std::deque<NoiseTable> noises;
    for (const float level : {0.0F, 0.00005F, 0.75F, 3.0F, 9.0F}) noises.emplace_back(generator).Build(level);
    for (round = 0; round < 600 && !HasFailure(); ++round) {
        NoiseTable& noise = noises[random() % noises.size()];
        noise.offsets = {static_cast<int32_t>(random()), static_cast<int32_t>(random())};
        const LightingCorrection params = AnyCorrection();
        size = {Any(0, 40) == 0, Any(1, 160), Any(1, 20), 0, 0, 0, 0};
        size.targetWidth = std::max(size.width + Any(-9, 9), 1);
        size.targetHeight = std::max(size.height + Any(-3, 3), 1);
        size.stride = 2 * size.targetWidth + Any(0, 1) * Any(0, 20);
        size.missing = Any(0, 1) * Any(0, size.stride);
        MakeOverlay(std::min(size.width, size.targetWidth), size.targetHeight);
        ForEachRunnableTable([&](const KernelTable& kernels) {
            ComparePacked({params, tiles, noise, kernels, scratch});
            ComparePlanar({params, tiles, noise, kernels, scratch});
        });
    }
}

}  // namespace
}  // namespace clarivex
