// The player against a media object that notes its calls, and against the real one.
#include "host/player.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "host/errors.h"
#include "host/plugin_library.h"
#include "tests/host/fake_media_object.h"

namespace clarivex {
namespace {

std::vector<uint8_t> Gradient(PictureSize size) {
    std::vector<uint8_t> samples(size.PlanarBytes());
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint8_t>(40 + i % 160);
    return samples;
}

std::string ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RunError& error) {
        return error.what();
    }
    return "";
}

TEST(Player, CallsInAPlayersOrder) {
    FakeMediaObject object;
    const std::vector<uint8_t> samples = Gradient({32, 16});
    {
        Player player(object.Reference(), {SampleFormat::yv12, {32, 16}, {25, 1}, {}}, {});
        EXPECT_EQ(player.Negotiate(), Negotiated::playing);
        player.Play(samples);
        player.Play(samples);
        player.Finish();
    }
    EXPECT_EQ(object.calls,
              (std::vector<std::string>{"SetInputType", "GetOutputType", "SetOutputType", "ProcessInput",
                                        "ProcessOutput", "ProcessInput", "ProcessOutput", "Discontinuity"}));
    EXPECT_EQ(object.outputLengthBefore, 0u);
    EXPECT_EQ(object.references, 1u) << "every reference was given back";
}

TEST(Player, HandsOverTheSettings) {
    FakeMediaObject object;
    const Player player(object.Reference(), {SampleFormat::yv12, {32, 16}, {}, {}}, {1, 0.25f, false, true});
    EXPECT_EQ(object.mode, 1u);
    EXPECT_EQ(object.sharpness, 0.25f);
    EXPECT_EQ(object.lighting, 0);
    EXPECT_EQ(object.allowHd, 1);
}

TEST(Player, StatesTheVideoAsAPlayerDoes) {
    FakeMediaObject object;
    Player player(object.Reference(), {SampleFormat::yuy2, {35, 20}, {30000, 1001}, {128, 117}}, {});
    ASSERT_EQ(player.Negotiate(), Negotiated::playing);
    const VIDEOINFOHEADER2& header = object.inputHeader;
    EXPECT_TRUE(IsEqualGUID(object.inputSubtype, mediaSubtypeYuy2));
    EXPECT_EQ(header.rcSource.right | header.rcTarget.right | header.rcTarget.bottom, 0);
    EXPECT_EQ(header.dwBitRate, 0u);
    EXPECT_EQ(header.AvgTimePerFrame, 333667);
    EXPECT_EQ(uint64_t{header.dwPictAspectRatioX} * 117 * 20, uint64_t{header.dwPictAspectRatioY} * 128 * 35);
    EXPECT_EQ(header.bmiHeader.biSize, 40u);
    EXPECT_EQ(header.bmiHeader.biWidth, 35);
    EXPECT_EQ(header.bmiHeader.biHeight, 20);
    EXPECT_EQ(header.bmiHeader.biBitCount, 16);
    EXPECT_EQ(header.bmiHeader.biCompression, mediaSubtypeYuy2.Data1);
    EXPECT_EQ(header.bmiHeader.biSizeImage, 72u * 20u);
}

TEST(Player, TimesFollowTheRateWithoutDrift) {
    FakeMediaObject object;
    const std::vector<uint8_t> samples = Gradient({32, 16});
    Player player(object.Reference(), {SampleFormat::yv12, {32, 16}, {30000, 1001}, {}}, {});
    player.Negotiate();
    for (int frame = 0; frame < 4; ++frame) player.Play(samples);
    EXPECT_EQ(object.starts, (std::vector<int64_t>{0, 333666, 667333, 1001000}));
    EXPECT_EQ(object.lengths, (std::vector<int64_t>{333666, 333667, 333667, 333666}));
    const DWORD timed = DMO_INPUT_DATA_BUFFERF_TIME | DMO_INPUT_DATA_BUFFERF_TIMELENGTH;
    EXPECT_EQ(object.inputFlags[0] & timed, timed);
    EXPECT_EQ(FrameStart(30'000'000, {30000, 1001}), 10'010'000'000'000) << "11 days later, to the tick";
    Player untimed(object.Reference(), {SampleFormat::yv12, {32, 16}, {}, {}}, {});
    untimed.Negotiate();
    untimed.Play(samples);
    EXPECT_EQ(object.inputFlags.back() & timed, 0u);
    EXPECT_EQ(object.inputHeader.AvgTimePerFrame, 0);
}

TEST(Player, WhatTheObjectLeavesOutIsTheSourceOverBlack) {
    FakeMediaObject object;
    object.outputSizeOf = [](PictureSize) { return PictureSize{48, 24}; };
    object.process = [](std::span<const BYTE>, BYTE* out) {
        std::memset(out, 200, 48);  // one row of luma and nothing else
        return S_OK;
    };
    const PictureSize size{32, 16};
    const std::vector<uint8_t> samples = Gradient(size);
    Player player(object.Reference(), {SampleFormat::iyuv, size, {}, {}}, {});
    player.Negotiate();
    const auto [luma, u, v] = player.Play(samples);
    ASSERT_EQ(luma.size(), 48u * 24u);
    EXPECT_EQ(luma[0], 200);
    EXPECT_EQ(luma[47], 200);
    EXPECT_EQ(luma[48], samples[32]) << "row 1, column 0";
    EXPECT_EQ(luma[48 + 32], 16);
    EXPECT_EQ(luma[48 * 16], 16);
    EXPECT_EQ(u[0], samples[size.LumaBytes()]);
    EXPECT_EQ(v[24 * 12 - 1], 128);
    object.process = [](auto, BYTE*) { return S_OK; };
    EXPECT_EQ(player.Play(samples)[0][0], samples[0]) << "nothing of the frame before is left";
}

TEST(Player, FailuresOfTheObjectAreNamed) {
    const std::vector<uint8_t> samples = Gradient({32, 16});
    FakeMediaObject object;
    object.process = [](auto, BYTE*) { return E_INVALIDARG; };
    Player player(object.Reference(), {SampleFormat::yv12, {32, 16}, {}, {}}, {});
    player.Negotiate();
    EXPECT_EQ(ErrorOf([&] { player.Play(samples); }), "the media object failed in ProcessOutput with code 0x80070057");
    FakeMediaObject silent;
    silent.process = [](auto, BYTE*) { return S_FALSE; };
    Player second(silent.Reference(), {SampleFormat::yv12, {32, 16}, {}, {}}, {});
    second.Negotiate();
    EXPECT_NE(ErrorOf([&] { second.Play(samples); }), "") << "no picture is a failure too";
}

TEST(Player, UnusableOffersAreRefused) {
    for (const PictureSize absurd : {PictureSize{31, 16}, PictureSize{32, 0}, PictureSize{-32, 16},
                                     PictureSize{INT32_MAX, 16}, PictureSize{32, INT32_MIN}}) {
        FakeMediaObject object;
        object.outputSizeOf = [=](PictureSize) { return absurd; };
        Player player(object.Reference(), {SampleFormat::yv12, {32, 16}, {}, {}}, {});
        EXPECT_NE(ErrorOf([&] { player.Negotiate(); }), "") << absurd.width << "x" << absurd.height;
    }
    FakeMediaObject small;
    small.outputBytes = 32 * 16 * 3 / 2 - 1;
    Player player(small.Reference(), {SampleFormat::yv12, {32, 16}, {}, {}}, {});
    EXPECT_NE(ErrorOf([&] { player.Negotiate(); }), "");
}

TEST(Player, ARefusalIsABypassOnlyWhenHdIsTheReason) {
    FakeMediaObject object;
    object.offerResult = [&] { return object.allowHd == 1 ? S_OK : DMO_E_TYPE_NOT_ACCEPTED; };
    Player bypassing(object.Reference(), {SampleFormat::yv12, {32, 16}, {}, {}}, {.allowHd = false});
    EXPECT_EQ(bypassing.Negotiate(), Negotiated::bypassedForHd);
    object.offerResult = [] { return DMO_E_TYPE_NOT_ACCEPTED; };
    Player refused(object.Reference(), {SampleFormat::yv12, {12, 64}, {}, {}}, {.allowHd = false});
    EXPECT_EQ(ErrorOf([&] { refused.Negotiate(); }),
              "a picture of 12x64 is too small: width and height must be at least 16");
}

TEST(PictureAspect, IsTheSampleAspectTimesTheSize) {
    EXPECT_EQ(PictureAspect({720, 576}, {16, 15}), (Ratio{4, 3}));
    EXPECT_EQ(PictureAspect({640, 360}, {1, 1}), (Ratio{16, 9}));
    EXPECT_FALSE(PictureAspect({640, 360}, {0, 0}).Known());
    EXPECT_TRUE(PictureAspect({8191, 8190}, {4294967291, 4294967279}).Known());
    EXPECT_FALSE(PictureAspect({8192, 1}, {4294967295, 1}).Known()) << "thinner than 32 bits can say";
}

TEST(MediaBuffer, KeepsTheRulesOfItsInterface) {
    const ComPointer<MediaBuffer> buffer = MediaBuffer::Make(10);
    DWORD length = 9;
    EXPECT_EQ(buffer->SetLength(11), E_INVALIDARG);
    EXPECT_EQ(buffer->SetLength(10), S_OK);
    EXPECT_EQ(buffer->GetBufferAndLength(nullptr, &length), S_OK);
    EXPECT_EQ(length, 10u);
    EXPECT_EQ(buffer->GetBufferAndLength(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(buffer->GetMaxLength(nullptr), E_POINTER);
    void* other = &length;
    EXPECT_EQ(buffer->QueryInterface(iidMediaObject, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
}

class RealMediaObject : public testing::TestWithParam<SampleFormat> {};
INSTANTIATE_TEST_SUITE_P(Formats, RealMediaObject,
                         testing::Values(SampleFormat::yv12, SampleFormat::iyuv, SampleFormat::yuy2));

TEST_P(RealMediaObject, EnlargesKeepsTheSizeOrRefusesAsItIsTold) {
    const PictureSize size{65, 49};
    Player player(MakeLinkedMediaObject(), {GetParam(), size, {25, 1}, {}}, {.mode = 0});
    ASSERT_EQ(player.Negotiate(), Negotiated::playing);
    EXPECT_EQ(player.OutputSize(), size);
    player.Play(Gradient(size));
    Player enlarging(MakeLinkedMediaObject(), {GetParam(), {33, 17}, {25, 1}, {}}, {});
    ASSERT_EQ(enlarging.Negotiate(), Negotiated::playing);
    EXPECT_EQ(enlarging.OutputSize(), (PictureSize{56, 24}));
    enlarging.Play(Gradient({33, 17}));
    enlarging.Finish();
    Player hd(MakeLinkedMediaObject(), {GetParam(), {1024, 576}, {}, {}}, {.allowHd = false});
    EXPECT_EQ(hd.Negotiate(), Negotiated::bypassedForHd);
    Player small(MakeLinkedMediaObject(), {GetParam(), {15, 64}, {}, {}}, {});
    EXPECT_THROW(small.Negotiate(), RunError);
}

}  // namespace
}  // namespace clarivex
