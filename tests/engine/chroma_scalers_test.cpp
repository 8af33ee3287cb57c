// Chroma enlarged at every width, pinned with all that lies around it: columns beyond the stride and rows that the target
// has no place for must stay as they are.
#include "engine/chroma_scalers.h"

#include <gtest/gtest.h>

#include "tests/support/crc32.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

/// One call: a target that is often too narrow, the last plane of a decoded picture and where its memory ends.
struct Call {
    const Plane& target;
    const SourceImage& source;
    bool chromaOdd;
    const KernelTable& kernels;
    SlackRow<uint8_t>& scratch;

    const Plane& From() const { return source.planes.third; }
    Plane FirstRows(int32_t rows) const { return {target.data, target.width, rows, target.stride}; }
};

struct ChromaScaler {
    const char* name;
    void (*run)(const Call& call);
    uint32_t digest;
};

constexpr ChromaScaler scalers[] = {
    {"three halves along rows",
     [](const Call& call) { ScaleChromaRows(call.target, call.From(), call.chromaOdd, call.scratch, call.kernels); },
     0x0b3517d8},
    {"three halves down columns",
     [](const Call& call) {
         const int32_t rows = 3 * call.From().height / 2 - call.From().width % 2;
         ScaleChromaColumns(call.FirstRows(rows), call.From(), call.source.end, call.scratch, call.kernels);
     },
     0xc559abc6},
    {"twice along rows",
     [](const Call& call) { DoubleChromaRows(call.target, call.From(), call.chromaOdd, call.scratch, call.kernels); },
     0x1107b3eb},
    {"twice down columns",
     [](const Call& call) {
         const int32_t rows = 2 * call.From().height - call.From().width % 2;
         DoubleChromaColumns(call.FirstRows(rows), call.From(), call.chromaOdd, call.kernels);
     },
     0x7c1eeed7},
};

uint32_t DigestOf(const ChromaScaler& scaler, const KernelTable& kernels) {
    SlackRow<uint8_t> scratch;
    uint32_t digest = 0;
    for (const bool chromaOdd : {false, true})
        for (int32_t width = 1; width <= 140; width += width < 40 ? 1 : 9) {
            const int32_t height = 1 + width % 19;
            const DecodedPicture picture(2 * width, 2 * height, 2 * width, Texture::hard, 5);
            const WorkingImage target = TestImage(width, 2 * height + 1, Texture::hard, 1);
            scaler.run({target.Planes().luma, picture.Source(), chromaOdd, kernels, scratch});
            digest = Crc32(target.Planes().luma.data, BytesOf(target), digest);
        }
    return digest;
}

TEST(ChromaScalers, GiveThePinnedSamplesAtEveryWidthAndStayInsideTheirTarget) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        for (const ChromaScaler& scaler : scalers)
            EXPECT_EQ(DigestOf(scaler, kernels), scaler.digest) << scaler.name << ", " << kernels.name;
    });
}

}  // namespace
}  // namespace clarivex
