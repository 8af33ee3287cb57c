// Whole frames between guard pages: what the object does with a host's buffers stays inside them, to the byte.

#include <cstdio>

#include "shell/caption.h"
#include "shell/instruction_set.h"
#include "tests/support/guarded_pages.h"
#include "tests/support/host_stream.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr size_t mostBytes = size_t{1} << 20;

TEST(GuardedPagesHarness, TheNeighboursOfBothEndsCannotBeTouched) {
    const GuardedPages pages(5000);
    for (const auto& bytes : {pages.First(5000), pages.Last(5000)})
        EXPECT_TRUE(IsReadable(bytes.data()) && IsReadable(&bytes.back()));
    EXPECT_FALSE(IsReadable(pages.First(1).data() - 1));
    EXPECT_FALSE(IsReadable(pages.Last(1).data() + 1));
}

std::vector<HostSize> AwkwardSizes() {
    std::vector<HostSize> sizes = {{352, 288}, {501, 37}, {640, 21}, {33, 300}, {719, 64}};
    for (int32_t width = 32; width <= 120; ++width) {
        for (const int32_t height : {16 + width * 7 % 25, 17 + width * 11 % 24}) sizes.push_back({width, height});
        sizes.push_back({width, 16, width, 8 + width * 5 % 9});
        if (width % 3 == 0) sizes.push_back({width + 1 + width % 7, 23, width, 22 - width % 5});
    }
    return sizes;
}

class GuardedBuffers : public testing::TestWithParam<const char*> {
protected:
    ~GuardedBuffers() override {
        UseInstructionSet("auto");
        ShowCaption(true);
    }

    void SetUp() override {
        if (!UseInstructionSet(GetParam())) GTEST_SKIP() << "cannot run on this processor";
    }

    /// Frames of one stream; both buffers begin behind a guard or end before one and hold just the picture.
    void Play(const GUID& subtype, const HostSize& size, unsigned mode, bool atEnd, int32_t frames) {
        SCOPED_TRACE(NameOf(subtype, size, mode, atEnd));
        object.media->Flush();
        const bool enlarged = mode == alwaysEnlarged;
        const auto offered = Negotiate(object, subtype, size, mode);
        const HostPicture source = HostPicture::Decoded(subtype, size, enlarged);
        const HostPicture target(subtype, offered.biWidth, offered.biHeight);
        FakeBuffer in(Part(inPages, source.BytesOf(size.width, size.height), atEnd));
        FakeBuffer out(Part(outPages,
                            enlarged ? target.BytesOf(size.EnlargedWidth(), size.EnlargedHeight())
                                     : target.BytesOf(size.width, size.height / 2 * 2),
                            atEnd),
                       7);
        for (size_t i = 0; i < in.Bytes().size(); ++i) in.Bytes()[i] = static_cast<uint8_t>(i * 37 % 251);
        const std::vector<uint8_t> before(in.Bytes().begin(), in.Bytes().end());
        for (int32_t frame = 0; frame < frames; ++frame) ASSERT_EQ(S_OK, PlayFrame(object, in, out));
        EXPECT_TRUE(std::ranges::equal(before, in.Bytes()));
        EXPECT_FALSE(out.HoldsOnly(7));
    }

    static std::span<uint8_t> Part(const GuardedPages& pages, size_t bytes, bool atEnd) {
        return atEnd ? pages.Last(bytes) : pages.First(bytes);
    }

    static std::string NameOf(const GUID& subtype, const HostSize& size, unsigned mode, bool atEnd) {
        char text[120];
        std::snprintf(text, sizeof text, "%.4s %dx%d of %dx%d, mode %u, %s a guard", (const char*)&subtype.Data1,
                      size.width, size.height, size.typeWidth, size.typeHeight, mode, atEnd ? "before" : "behind");
        return text;
    }

    const GuardedPages inPages{mostBytes};
    const GuardedPages outPages{mostBytes};
    TestObject object;
};

constexpr GUID subtypes[] = {mediaSubtypeYv12, mediaSubtypeIyuv, mediaSubtypeYuy2};
constexpr unsigned modes[] = {neverEnlarged, alwaysEnlarged};

TEST_P(GuardedBuffers, HoldWholeFramesOfHundredsOfSizes) {
    ShowCaption(false);
    object = TestObject{};  // takes the instruction set
    int32_t count = 0;
    for (const HostSize& size : AwkwardSizes())
        for (const GUID& subtype : subtypes)
            for (const unsigned mode : modes)
                for (const bool atEnd : {false, true}) {
                    object.player->SetEnable(++count % 11 != 0);
                    object.settings->put_Sharpness(static_cast<float>(1 + count % 7) / 3);
                    object.settings->put_EnableLighting(count % 5 % 2);
                    Play(subtype, size, mode, atEnd, 1);
                    if (HasFatalFailure()) return;
                }
}

TEST_P(GuardedBuffers, HoldFramesUnderTheCaption) {
    if (!HasCaptionFont()) GTEST_SKIP() << "no font for the caption";
    object = TestObject{};
    for (const HostSize& size : {HostSize{97, 67}, {64, 48, 63, 47}, {120, 81}})
        for (const GUID& subtype : subtypes)
            for (const unsigned mode : modes)
                for (const bool atEnd : {false, true}) Play(subtype, size, mode, atEnd, 73);
}

INSTANTIATE_TEST_SUITE_P(InstructionSets, GuardedBuffers, testing::Values("scalar", "sse2", "avx2", "avx512"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
}  // namespace clarivex
