// The player against a media object that notes what it is told or talks nonsense.
#include "host/player.h"

#include "host/errors.h"
#include "tests/host/error_of.h"
#include "tests/host/fake_media_object.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

std::vector<uint8_t> Gradient(PictureSize size) {
    std::vector<uint8_t> samples(size.PlanarBytes());
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint8_t>(40 + i % 160);
    return samples;
}

const std::vector<uint8_t> samples = Gradient({32, 16});

// Of small YV12 pictures.
Player PlayerOf(FakeMediaObject& object, Ratio frameRate = {}, const PlayerSettings& settings = {},
                PictureSize size = {32, 16}) {
    return Player(ReferenceTo<IMediaObject>(&object), {SampleFormat::yv12, size, frameRate, {}}, settings);
}

TEST(Player, HandsOverTheSettingsTheFramesAndTheirEnd) {
    FakeMediaObject object;
    {
        Player player = PlayerOf(object, {}, {2, 0.25f, false, true});
        EXPECT_EQ(player.Negotiate(), Negotiated::playing);
        player.Play(samples);
        player.Finish();
    }
    unsigned mode = 9;
    float sharpness = 9;
    int lighting = 9, allowHd = 9;
    object.get_CVXMode(&mode);
    object.get_Sharpness(&sharpness);
    object.get_EnableLighting(&lighting);
    object.get_AllowHD(&allowHd);
    EXPECT_EQ(std::tuple(2U, 0.25f, 0, 1), std::tuple(mode, sharpness, lighting, allowHd));
    EXPECT_EQ(object.discontinuities, 1);
    EXPECT_EQ(object.outputLengthBefore, 0u);
    EXPECT_EQ(object.references, 1) << "every reference was given back";
}

TEST(Player, StatesTheVideoAsAPlayerDoes) {
    FakeMediaObject object;
    Player player(ReferenceTo<IMediaObject>(&object), {SampleFormat::yuy2, {35, 20}, {30000, 1001}, {128, 117}}, {});
    ASSERT_EQ(player.Negotiate(), Negotiated::playing);
    const VIDEOINFOHEADER2& header = object.inputHeader;
    EXPECT_EQ(header.rcSource.right | header.rcTarget.right | header.rcTarget.bottom, 0);
    EXPECT_EQ(header.dwBitRate, 0u);
    EXPECT_EQ(header.AvgTimePerFrame, 333667);
    EXPECT_EQ(uint64_t{header.dwPictAspectRatioX} * 117 * 20, uint64_t{header.dwPictAspectRatioY} * 128 * 35);
    const BITMAPINFOHEADER& picture = header.bmiHeader;
    EXPECT_EQ(std::tuple(40U, 35, 20), std::tuple(picture.biSize, picture.biWidth, picture.biHeight));
    EXPECT_EQ(std::tuple(16, 72U * 20), std::tuple(picture.biBitCount, picture.biSizeImage));
    EXPECT_EQ(picture.biCompression, mediaSubtypeYuy2.Data1);
}

TEST(Player, HandsOverTheSettingsAndTheFramesWithTimesThatDoNotDrift) {
    FakeMediaObject object;
    Player player = PlayerOf(object, {30000, 1001});
    player.Negotiate();
    for (int frame = 0; frame < 4; ++frame) player.Play(samples);
    EXPECT_EQ(object.starts, (std::vector<int64_t>{0, 333666, 667333, 1001000}));
    EXPECT_EQ(object.lengths, (std::vector<int64_t>{333666, 333667, 333667, 333666}));
    EXPECT_EQ(FrameStart(30'000'000, {30000, 1001}), 10'010'000'000'000) << "11 days later, to the tick";
    const DWORD timed = DMO_INPUT_DATA_BUFFERF_TIME | DMO_INPUT_DATA_BUFFERF_TIMELENGTH;
    EXPECT_EQ(object.inputFlags[0] & timed, timed);
    Player untimed = PlayerOf(object);
    untimed.Negotiate();
    untimed.Play(samples);
    EXPECT_EQ(object.inputFlags.back() & timed, 0u);
    EXPECT_EQ(object.inputHeader.AvgTimePerFrame, 0);
}

TEST(Player, WhatTheObjectLeavesOutIsTheSourceOverBlack) {
    FakeMediaObject object;
    object.process = [](BYTE* out) {
        std::memset(out, 200, 48);  // one row of luma and nothing else
        return S_OK;
    };
    Player player = PlayerOf(object);
    player.Negotiate();
    const auto [luma, u, v] = player.Play(samples);
    ASSERT_EQ(luma.size(), 48u * 24u);
    EXPECT_EQ(luma[47], 200);
    EXPECT_EQ(luma[48], samples[32]) << "row 1, column 0";
    EXPECT_EQ(u[0], samples[32 * 16]);
    EXPECT_EQ(v[24 * 12 - 1], 128);
    object.process = [](BYTE*) { return S_OK; };
    EXPECT_EQ(player.Play(samples)[0][0], samples[0]) << "nothing of the frame before is left";
}

/// What a media object says is looked at before it is believed.
TEST(Player, NonsenseOfTheObjectIsRefusedAndNamed) {
    using Fake = FakeMediaObject;
    const auto spoiling = [](const std::function<void(DMO_MEDIA_TYPE & type)>& spoil) {
        return [=](Fake& object) { object.spoilOffer = spoil; };
    };
    const auto offering = [&](PictureSize size) {
        return spoiling([=](DMO_MEDIA_TYPE& type) {
            BITMAPINFOHEADER& picture = reinterpret_cast<VIDEOINFOHEADER2*>(type.pbFormat)->bmiHeader;
            picture.biWidth = size.width;
            picture.biHeight = size.height;
        });
    };
    constexpr const char* unusable = "offers an output type that cannot be shown";
    const std::pair<std::function<void(Fake&)>, const char*> cases[] = {
        {offering({31, 16}), unusable},
        {offering({32, 0}), unusable},
        {offering({-32, 16}), unusable},
        {offering({INT32_MAX, 16}), unusable},
        {offering({32, INT32_MIN}), unusable},
        {spoiling([](auto& type) { type.majortype = {}; }), unusable},
        {spoiling([](auto& type) { type.subtype = mediaSubtypeYuy2; }), unusable},
        {spoiling([](auto& type) { type.formattype = {}; }), unusable},
        {spoiling([](auto& type) { --type.cbFormat; }), unusable},
        {spoiling([](auto& type) { CoTaskMemFree(std::exchange(type.pbFormat, nullptr)); }), unusable},
        {spoiling([](auto& type) { MoFreeMediaType(&type); }), unusable},
        {[](Fake& object) { object.withoutSettings = true; }, "gives no settings"},
        {[](Fake& object) { object.inputBytes = 0; }, "a buffer of 0 bytes; a picture of 32x16 needs 768"},
        {[](Fake& object) { object.inputBytes = UINT32_MAX; }, "a buffer of 4294967295 bytes"},
        {[](Fake& object) { object.outputBytes = 1727; }, "a buffer of 1727 bytes; a picture of 48x24"},
        {[](Fake& object) { object.outputBytes = UINT32_MAX; }, "a buffer of 4294967295 bytes"},
        {[](Fake& object) { object.process = [](BYTE*) { return E_INVALIDARG; }; },
         "failed in ProcessOutput with code 0x80070057"},
        {[](Fake& object) { object.process = [](BYTE*) { return S_FALSE; }; }, "failed in ProcessOutput"},
    };
    for (const auto& [spoil, words] : cases) {
        FakeMediaObject object;
        spoil(object);
        ExpectError(words, [&] {
            Player player = PlayerOf(object);
            player.Negotiate();
            player.Play(samples);
        });
        EXPECT_EQ(object.references, 1);
    }
}

TEST(Player, ARefusalIsABypassOnlyWhenHdIsTheReason) {
    FakeMediaObject object;
    const PlayerSettings noHd{.allowHd = false};
    EXPECT_EQ(PlayerOf(object, {}, noHd, {1024, 576}).Negotiate(), Negotiated::bypassedForHd);
    ExpectError("a picture of 12x64 is too small: width and height must be at least 16", [&] {
        PlayerOf(object, {}, noHd, {12, 64}).Negotiate();
    });
}

TEST(PictureAspect, IsTheSampleAspectTimesTheSize) {
    EXPECT_EQ(PictureAspect({720, 576}, {16, 15}), (Ratio{4, 3}));
    EXPECT_EQ(PictureAspect({640, 360}, {1, 1}), (Ratio{16, 9}));
    EXPECT_FALSE(PictureAspect({640, 360}, {0, 0}).Known());
    EXPECT_TRUE(PictureAspect({8191, 8190}, {4294967291, 4294967279}).Known());
    EXPECT_FALSE(PictureAspect({8192, 1}, {4294967295, 1}).Known()) << "thinner than 32 bits can say";
}

}  // namespace
}  // namespace clarivex
