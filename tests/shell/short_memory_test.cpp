// Memory that comes late or not at all: no crash, no leak, no lost frame.
#include "tests/support/short_memory.h"

#include "shell/caption.h"
#include "shell/memory_wait.h"
#include "tests/support/host_stream.h"
#include "tests/support/memory_count.h"
#include "tests/support/open_object.h"
#include "tests/support/test.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr HostSize size{64, 48};
const GUID subtypes[] = {mediaSubtypeYv12, mediaSubtypeYuy2};

/// Asks again as long as memory is short; every shortage ends.
template <class Call>
HRESULT Insist(Call call) {
    HRESULT result = call();
    while (result == E_OUTOFMEMORY) result = call();
    return result;
}

struct Buffers {
    FakeBuffer in{size_t{64 * 48 * 2}, 90};
    FakeBuffer out{size_t{96 * 72 * 2}};
};

/// Two frames of a new object, the first ones that show the caption. Allocates nothing itself.
HRESULT PlayShortStream(IClassFactory& factory, const DMO_MEDIA_TYPE& type, Buffers& buffers) {
    IMediaObject* media = nullptr;
    if (const HRESULT made =
            Insist([&] { return factory.CreateInstance(nullptr, iidMediaObject, reinterpret_cast<void**>(&media)); });
        made != S_OK)
        return made;
    const Owned<IMediaObject> owner(media);
    Ask<ICVXSettings>(media, iidCvxSettings)->put_CVXMode(alwaysEnlarged);
    ReceivedType offered;
    HRESULT result = Insist([&] { return media->SetInputType(0, &type, 0); });
    if (result == S_OK) result = Insist([&] { return media->GetOutputType(0, 0, offered.Out()); });
    if (result == S_OK) result = Insist([&] { return media->SetOutputType(0, &offered.Get(), 0); });
    for (int frame = 0; frame < 2 && result == S_OK; ++frame) {
        DMO_OUTPUT_DATA_BUFFER output = {&buffers.out, 0, 0, 0};
        result = media->ProcessInput(0, &buffers.in, 0, 0, 0);
        if (result == S_OK) result = media->ProcessOutput(0, 1, &output, nullptr);
    }
    return result;
}

/// As its first lines say, with the n-th allocation failing `count` times, for n up to the number there are.
void FailEveryAllocation(const GUID& classId, const GUID& subtype, int32_t count) {
    VideoInfoType source(size.width, size.height, subtype);
    const DMO_MEDIA_TYPE* type = source.Type();
    const auto factory = MediaObjectFactory(classId);
    Buffers buffers;
    constexpr int32_t none = ShortMemory::forEver - 1;
    int32_t allocations = 1;
    for (int32_t first = -1; first < std::min(allocations, 500); ++first) {
        HRESULT result;
        {
            const ShortMemory memory(first < 0 ? none : first, 1 + (count - 1) * (first >= 0));
            result = PlayShortStream(*factory, *type, buffers);
            if (first < 0) allocations = ShortMemory::Attempts();
        }
        ASSERT_EQ(S_OK, result) << "allocation " << first << " of " << allocations << " fails " << count << " times";
        ASSERT_EQ(1, buffers.in.references.load());
    }
    EXPECT_GT(allocations, 40);
}

TEST(ShortMemoryOfAnObject, LosesNoFrameWhicheverAllocationFails) {
    if (!HasCaptionFont()) GTEST_SKIP() << "no font for the caption";
    for (const GUID& subtype : subtypes)
        for (const int32_t count : {1, 4}) FailEveryAllocation(clsidMediaObject, subtype, count);
    FailEveryAllocation(clsidVideoEffect, mediaSubtypeNv12, 1);
}

TEST(ShortMemoryOfAnObject, AFrameThatGivesUpIsAnErrorAndRunsWhenThereIsMemoryAgain) {
    OpenTestObject scarce, ample;
    Buffers buffers;
    FakeBuffer expected{size_t{96 * 72 * 2}};
    ShowCaption(false);
    for (size_t i = 0; i < buffers.in.Bytes().size(); ++i) buffers.in.Bytes()[i] = static_cast<uint8_t>(i * 37 % 251);
    for (TestObject* each : {&scarce.object, &ample.object}) {
        each->settings->put_EnableLighting(0);  // the process's first frame adopts its levels at once
        Negotiate(*each, mediaSubtypeYv12, size, alwaysEnlarged);
    }
    ASSERT_EQ(S_OK, PlayFrame(ample.object, buffers.in, expected));
    DMO_OUTPUT_DATA_BUFFER output = {&buffers.out, 0, 0, 0};
    ASSERT_EQ(S_OK, scarce.object.media->ProcessInput(0, &buffers.in, 0, 0, 0));
    HRESULT result = E_FAIL;
    int32_t failures = -1;
    for (; result != S_OK; ++failures) {
        const ShortMemory memory(failures + 1, ShortMemory::forEver, false);
        result = scarce.object.media->ProcessOutput(0, 1, &output, nullptr);
        ASSERT_TRUE(result == S_OK || (result == E_OUTOFMEMORY && buffers.in.references == 2));
    }
    EXPECT_GT(failures, 3);
    EXPECT_EQ(1, buffers.in.references.load());
    ShowCaption(true);
    constexpr int32_t mostNoise = 16;
    for (size_t i = 0; i < 96 * 72 * 3 / 2; ++i)
        ASSERT_NEAR(buffers.out.Bytes()[i], expected.Bytes()[i], i < 96 * 72 ? mostNoise : 0) << i;
}

TEST(ShortMemoryOfAProcess, IsGivenUpAfterTheTimeItAllowsAndTheSizeIsKnown) {
    if (!HasCaptionFont()) GTEST_SKIP() << "no font for the caption";
    const MemoryWait previous = SetMemoryWait(nullptr);
    GiveUpOnMemoryAfter(2 * retryMilliseconds);
    EXPECT_FALSE(MemoryGivenUp());
    EXPECT_EQ(size_t{96 * 72 * 3 / 2}, DrawCaption(100, 96, 72, 1.0F).size());
    {
        const MemoryCount memory(1 << 30);
        EXPECT_THROW(DrawCaption(100, 96, 72, 1.0F), const char*);
        EXPECT_EQ(3, MemoryCount::Attempts());
        EXPECT_GT(MemoryGivenUp().value_or(0), 0U);
        EXPECT_LE(MemoryGivenUp().value_or(0), MemoryCount::Bytes() / 3);
    }
    SetMemoryWait(previous);
}

}  // namespace
}  // namespace clarivex
