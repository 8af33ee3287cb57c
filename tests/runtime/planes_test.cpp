#include "runtime/planes.h"

#include "runtime/memory.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr uint8_t untouched = 0xEE;

// A plane at an offset from 64-byte alignment, with room behind its rows; source samples tell their place.
struct TestPlane {
    TestPlane(int32_t width, int32_t height, int32_t stride, size_t offset = 0)
        : bytes(static_cast<size_t>(height * stride + 64) + offset),
          block(MakeAlignedArray<uint8_t>(bytes)),
          plane{block.get() + offset, width, height, stride} {
        std::fill_n(block.get(), bytes, untouched);
    }

    void Number() {
        for (size_t i = 0; i < bytes; ++i) block[i] = static_cast<uint8_t>(i % 199);
    }

    int64_t TouchedBytes() const {
        return std::count_if(block.get(), block.get() + bytes, [](uint8_t byte) { return byte != untouched; });
    }

    size_t bytes;
    SampleBlock block;
    Plane plane;
};

// Bytes copied for three rows.
TEST(CopyPlane, CopiesExactlyTheBytesOfEachCase) {
    const struct {
        const char* name;
        int32_t width, targetStride, sourceStride;
        size_t sourceOffset;
        int64_t copiedBytes;
    } cases[] = {
        {"touching rows go as one run", 50, 66, 66, 0, 3 * 66},
        {"rows wider apart go one by one", 50, 67, 67, 0, 3 * 50},
        {"rows narrower than the width go as one run", 51, 50, 50, 0, 3 * 50},
        {"whole units where there is room", 100, 128, 136, 0, 3 * 128},
        {"no more than 32 bytes behind the width", 95, 128, 136, 0, 3 * 95},
        {"no unit behind the smaller stride", 100, 120, 136, 0, 3 * 100},
        {"no unit from an unaligned source", 100, 128, 136, 4, 3 * 100},
        {"no unit from an uneven stride", 100, 128, 140, 0, 3 * 100},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        TestPlane source(test.width, 3, test.sourceStride, test.sourceOffset);
        const TestPlane target(test.width, 3, test.targetStride);
        source.Number();
        CopyPlane(target.plane, source.plane);
        EXPECT_EQ(target.TouchedBytes(), test.copiedBytes);
        for (int32_t y = 0; y < 3; ++y) {
            const auto visible = static_cast<size_t>(std::min(test.width, test.targetStride));
            EXPECT_TRUE(std::equal(target.plane.Row(y), target.plane.Row(y) + visible, source.plane.Row(y)));
        }
    }
}

TEST(CopyPlane, CropsToTheSmallerPlaneAndFollowsRowsUpwards) {
    TestPlane source(40, 5, 70);
    const TestPlane target(33, 2, 80);
    source.Number();
    CopyPlane(target.plane, source.plane);
    CopyPlane({target.plane.data, 0, 2, 80}, source.plane);
    CopyPlane({target.plane.data, 33, -1, 80}, source.plane);
    EXPECT_EQ(target.TouchedBytes(), 2 * 33);
    const TestPlane upwards(40, 5, 70);
    CopyPlane({upwards.plane.Row(4), 40, 5, -70}, {source.plane.Row(4), 40, 5, -70});
    EXPECT_EQ(upwards.TouchedBytes(), 5 * 40);
    EXPECT_EQ(upwards.plane.Row(0)[39], source.plane.Row(0)[39]);
}

}  // namespace
}  // namespace clarivex
