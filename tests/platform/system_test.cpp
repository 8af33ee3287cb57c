// The system's calls as the floors above rely on them, on both systems.
#include <gtest/gtest.h>

#include <thread>

#include "platform/guids.h"
#include "platform/resources.h"
#include "platform/win32.h"
#include "runtime/owned_handle.h"

namespace clarivex {
namespace {

OwnedHandle MakeEvent(bool manualReset) {
    return OwnedHandle(CreateEventA(nullptr, manualReset ? TRUE : FALSE, FALSE, nullptr));
}

TEST(Events, OneSignalOfAnAutoResetEventLetsOneWaitThrough) {
    const OwnedHandle event = MakeEvent(false);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event.get(), 0));
    SetEvent(event.get());
    SetEvent(event.get());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event.get(), 0));
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event.get(), 0));
}

TEST(Events, ManualResetEventStaysSignalledAndWakesAWaitingThread) {
    const OwnedHandle event = MakeEvent(true);
    std::thread waiter([&] { EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event.get(), INFINITE)); });
    SetEvent(event.get());
    waiter.join();
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event.get(), 0));
}

TEST(Threads, PriorityIsRememberedAndUnknownOnesAreRefused) {
    const HANDLE self = GetCurrentThread();
    const int before = GetThreadPriority(self);
    EXPECT_TRUE(SetThreadPriority(self, THREAD_PRIORITY_TIME_CRITICAL));
    EXPECT_FALSE(SetThreadPriority(self, 99));
    EXPECT_EQ(THREAD_PRIORITY_TIME_CRITICAL, GetThreadPriority(self));
    EXPECT_TRUE(SetThreadPriority(self, before));
}

TEST(MediaTypes, CopyOwnsItsFormatBlock) {
    BYTE block[3] = {1, 2, 3};
    DMO_MEDIA_TYPE source = {};
    source.majortype = mediaTypeVideo;
    source.lSampleSize = 7;
    source.cbFormat = sizeof block;
    source.pbFormat = block;
    DMO_MEDIA_TYPE copy = {};
    ASSERT_EQ(S_OK, MoCopyMediaType(&copy, &source));
    block[1] = 99;
    EXPECT_NE(block, copy.pbFormat);
    ASSERT_EQ(3U, copy.cbFormat);
    EXPECT_EQ(2, copy.pbFormat[1]);

    EXPECT_EQ(S_OK, MoFreeMediaType(&copy));
    EXPECT_EQ(nullptr, copy.pbFormat);
    EXPECT_EQ(7U, copy.lSampleSize);
    EXPECT_EQ(E_POINTER, MoCopyMediaType(&copy, nullptr));
    EXPECT_EQ(E_POINTER, MoCopyMediaType(nullptr, &copy));
    EXPECT_EQ(E_POINTER, MoFreeMediaType(nullptr));
}

TEST(WideText, IsComparedWithoutCase) {
    EXPECT_EQ(0, _wcsicmp(L"IconStreams", L"iCONstreamS"));
    EXPECT_NE(0, _wcsicmp(L"IconStreams", L"IconStream"));
}

TEST(Icon, ModuleWithoutOneGivesAnInvalidHandle) {
    auto* stream = reinterpret_cast<IStream*>(1);
    EXPECT_EQ(static_cast<HRESULT>(0x80070006U), LoadIconStream(nullptr, &stream));
    EXPECT_EQ(nullptr, stream);
    EXPECT_EQ(E_POINTER, LoadIconStream(nullptr, nullptr));
}

}  // namespace
}  // namespace clarivex
