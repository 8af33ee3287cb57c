// Pictures for tests of stages that work on whole planes: random ones, in working images and in buffers that end where
// reading must end.
#pragma once

#include "algorithms/readable_row.h"
#include "algorithms/working_image.h"
#include "simd/kernel_table.h"
#include "tests/simd/runs_here.h"
#include "tests/support/test.h"

namespace clarivex {

/// What breaks arithmetic, and what gates and dead zones see in a real picture: slow changes with a little noise.
enum class Texture { hard, soft };

inline uint8_t TextureSample(Texture texture, int32_t x, int32_t y, uint32_t noise) {
    if (texture == Texture::hard)
        return static_cast<uint8_t>((noise & 256) != 0 ? noise : (noise & 512) != 0 ? 255 : 0);
    const int32_t step = (x / 9 + y / 7) % 3 * 30;
    return static_cast<uint8_t>(80 + step + x % 32 + static_cast<int32_t>(noise % 9));
}

/// Fills `count` samples that belong to rows of `stride`.
inline void FillTexture(uint8_t* samples, size_t count, int32_t stride, Texture texture, uint32_t seed) {
    std::mt19937 random(seed);
    for (size_t i = 0; i < count; ++i) {
        const auto position = static_cast<int32_t>(i);
        samples[i] = TextureSample(texture, position % stride, position / stride, static_cast<uint32_t>(random()));
    }
}

inline size_t BytesOf(const WorkingImage& image) { return static_cast<size_t>(image.End() - image.Planes().luma.data); }

/// A working image full of samples, spare columns and rows included. The same arguments give the same image.
inline WorkingImage TestImage(int32_t width, int32_t height, Texture texture, uint32_t seed) {
    WorkingImage image;
    image.Resize(width, height);
    if (width == 0) return image;
    FillTexture(image.Planes().luma.data, BytesOf(image), image.Planes().luma.stride, texture, seed);
    return image;
}

/// The three planes of a picture as a decoder leaves them: rows one after the other, the memory ending with the last
/// sample of the third plane.
class DecodedPicture {
public:
    DecodedPicture(int32_t width, int32_t height, int32_t stride, Texture texture, uint32_t seed)
        : chromaStride(stride / 2) {
        const int32_t chromaWidth = (width + 1) / 2;
        const int32_t chromaHeight = (height + 1) / 2;
        const size_t secondStart = static_cast<size_t>(stride) * static_cast<size_t>(height);
        const size_t thirdStart = secondStart + static_cast<size_t>(chromaStride) * static_cast<size_t>(chromaHeight);
        size = thirdStart + static_cast<size_t>(chromaStride * (chromaHeight - 1) + chromaWidth);
        memory = std::make_unique<uint8_t[]>(size);
        FillTexture(memory.get(), size, stride, texture, seed);
        planes = {.luma = {memory.get(), width, height, stride},
                  .second = {memory.get() + secondStart, chromaWidth, chromaHeight, chromaStride},
                  .third = {memory.get() + thirdStart, chromaWidth, chromaHeight, chromaStride}};
    }

    const ImagePlanes& Planes() const { return planes; }
    SourceImage Source() const { return {planes, memory.get() + size, {}}; }
    std::string Bytes() const { return {reinterpret_cast<const char*>(memory.get()), size}; }

private:
    int32_t chromaStride;
    size_t size;
    std::unique_ptr<uint8_t[]> memory;
    ImagePlanes planes;
};

/// Whether two planes show the same in their first `columns` columns and `rows` rows.
[[nodiscard]] inline testing::AssertionResult SameSamples(const PlaneView& actual, const PlaneView& expected,
                                                          int32_t columns, int32_t rows) {
    for (int32_t y = 0; y < rows; ++y)
        for (int32_t x = 0; x < columns; ++x)
            if (actual.Row(y)[x] != expected.Row(y)[x])
                return testing::AssertionFailure() << "column " << x << ", row " << y << ": " << +actual.Row(y)[x]
                                                   << " instead of " << +expected.Row(y)[x];
    return testing::AssertionSuccess();
}

[[nodiscard]] inline testing::AssertionResult SameSamples(const PlaneView& actual, const PlaneView& expected) {
    if (actual.width != expected.width || actual.height != expected.height)
        return testing::AssertionFailure() << actual.width << " x " << actual.height << " samples instead of "
                                           << expected.width << " x " << expected.height;
    return SameSamples(actual, expected, expected.width, expected.height);
}

[[nodiscard]] inline testing::AssertionResult SamePictures(const PictureView& actual, const PictureView& expected) {
    if (const auto luma = SameSamples(actual.luma, expected.luma); !luma) return luma;
    if (const auto second = SameSamples(actual.second, expected.second); !second)
        return testing::AssertionFailure() << "second plane: " << second.message();
    if (const auto third = SameSamples(actual.third, expected.third); !third)
        return testing::AssertionFailure() << "third plane: " << third.message();
    return testing::AssertionSuccess();
}

/// Calls test(table) for every kernel table that this processor runs.
template <class Test>
void ForEachRunnableTable(Test test) {
    for (const KernelTable* table : AllKernels())
        if (RunsHere(*table)) test(*table);
}

}  // namespace clarivex
