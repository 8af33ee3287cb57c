// The video effect as hosts use it: its frames are the C interface's wherever they stand, whatever else runs; what it takes and
// offers; and its saved state.

#include "tests/support/effect_stream.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr HostRoom tight = {};
const FrameSize usual{64, 48};

TestObject MakeEffect(unsigned mode) {
    TestObject object = TestObject::OfClass(clsidVideoEffect);
    object.settings->put_CVXMode(mode);
    return object;
}

template <class Type>
void ExpectLibraryFrames(const FrameSize& size, bool enlarged, const HostRoom& in, const HostRoom& out) {
    for (const EffectFormat& format : effectFormatsKnown) {
        const TestObject effect = MakeEffect(enlarged ? 2 : 0);
        EffectStream<Type> stream(*effect.media, format, size, in, out);
        EXPECT_EQ(enlarged, effect.ScalingActive());
        EXPECT_TRUE(LibraryFrames(format, size, enlarged, 2) == stream.PlayFrames(0, 2))
            << size.width << " x " << size.height << ", format " << format.format << ", right " << in.right;
    }
}

TEST(VideoEffect, GivesTheLibrarysFramesWhereverPicturesStandInTheirBuffers) {
    constexpr HostRoom rooms[] = {tight, {0, 0, 24, 0}, {0, 0, 0, 8}, {0, 0, 7, 3}, {6, 10, 16, 5}};
    size_t next = 0;
    for (const FrameSize& size : {usual, FrameSize{176, 144}, {65, 49}, {90, 35}, {34, 17}})
        for (const bool enlarged : {false, true})
            for (const HostRoom& room : {rooms[next % 5], rooms[++next % 5]}) {
                ExpectLibraryFrames<VideoInfo2Type>(size, enlarged, room, rooms[next % 3]);
                ExpectLibraryFrames<VideoInfoType>(size, enlarged, tight, room);
            }
    ExpectLibraryFrames<VideoInfo2Type>({20, 40}, false, tight, rooms[3]);  // too narrow for more than a copy
}

TEST(VideoEffect, StartsAnewWithAnotherPictureAndGoesOnWithTheSame) {
    const TestObject effect = MakeEffect(2);
    const EffectFormat &nv12 = effectFormatsKnown[0], &yuy2 = effectFormatsKnown[3];
    const auto expected = LibraryFrames(nv12, usual, true, 4);
    const auto played = EffectStream(*effect.media, nv12, usual, tight, tight).PlayFrames(0, 2);
    EXPECT_EQ(S_OK, effect.media->Flush());  // a seek; then a renderer that wants longer rows
    auto all = played;
    const auto rest = EffectStream(*effect.media, nv12, usual, {0, 0, 8, 0}, {0, 0, 40, 2}).PlayFrames(2, 2);
    all.insert(all.end(), rest.begin(), rest.end());
    EXPECT_TRUE(expected == all);
    EXPECT_TRUE(LibraryFrames(yuy2, usual, true, 2) ==
                EffectStream(*effect.media, yuy2, usual, tight, tight).PlayFrames(0, 2));
    EXPECT_EQ(S_OK, effect.media->SetInputType(0, nullptr, DMO_SET_TYPEF_CLEAR));
    EXPECT_TRUE(LibraryFrames(yuy2, usual, true, 2) ==
                EffectStream(*effect.media, yuy2, usual, tight, tight).PlayFrames(0, 2));
}

TEST(VideoEffectsOnThreads, GiveWhatEachGivesAloneWhileOthersComeAndGoAndSettingsArePut) {
    constexpr int32_t frames = 20;
    const FrameSize sizes[] = {usual, {160, 120}, {90, 35}};
    std::atomic<int> playing = 3;
    std::vector<std::thread> threads;
    std::vector<TestObject> effects;
    for (size_t i = 0; i < 3; ++i) effects.push_back(MakeEffect(2));
    for (size_t i = 0; i < 3; ++i)
        threads.emplace_back([&, i] {
            EffectStream stream(*effects[i].media, effectFormatsKnown[i], sizes[i], tight, tight);
            EXPECT_TRUE(LibraryFrames(effectFormatsKnown[i], sizes[i], true, frames) == stream.PlayFrames(0, frames));
            --playing;
        });
    threads.emplace_back([&] {
        while (playing > 0)
            for (const TestObject& effect : effects) {
                effect.settings->put_Sharpness(1.0F);
                effect.settings->put_EnableLighting(1);
                effect.settings->put_CVXMode(2);
            }
    });
    while (playing > 0) {
        const TestObject other = MakeEffect(0);
        EffectStream(*other.media, effectFormatsKnown[0], usual, tight, tight).PlayFrames(0, 1);
    }
    for (std::thread& thread : threads) thread.join();
}

/// Offers of an effect for a type: size, header and control flags of each.
struct OfferSeen {
    FrameSize size;
    bool second;
    DWORD controlFlags;

    bool operator==(const OfferSeen&) const = default;
};

template <class Type>
std::vector<OfferSeen> OffersFor(Type type, unsigned mode, int allowHd) {
    const TestObject effect = MakeEffect(mode);
    std::vector<OfferSeen> offers;
    ReceivedType offered;
    effect.settings->put_AllowHD(allowHd);
    EXPECT_EQ(DMO_E_TYPE_NOT_SET, effect.media->GetOutputType(0, 0, offered.Out()));
    EXPECT_EQ(S_OK, effect.media->SetInputType(0, type.Type(), 0));
    while (effect.media->GetOutputType(0, static_cast<DWORD>(offers.size()), offered.Out()) == S_OK) {
        const bool second = IsEqualGUID(offered.Get().formattype, formatVideoInfo2);
        const auto header = offered.template As<VIDEOINFOHEADER2>();
        const auto bitmap = second ? header.bmiHeader : offered.template As<VIDEOINFOHEADER>().bmiHeader;
        const RECT rect = offered.template As<VIDEOINFOHEADER>().rcTarget;
        EXPECT_EQ(std::tuple(0, 0, bitmap.biWidth, bitmap.biHeight),
                  std::tuple(rect.left, rect.top, rect.right, rect.bottom));
        EXPECT_EQ(offered.Get().lSampleSize, bitmap.biSizeImage);
        EXPECT_EQ(S_OK, effect.media->SetOutputType(0, &offered.Get(), DMO_SET_TYPEF_TEST_ONLY));
        offers.push_back({{bitmap.biWidth, bitmap.biHeight}, second, second ? header.dwControlFlags : 0});
    }
    EXPECT_EQ(DMO_E_NO_MORE_ITEMS, effect.media->GetOutputType(0, static_cast<DWORD>(offers.size()), nullptr));
    return offers;
}

TEST(VideoEffect, OffersTheEnlargedPictureThenTheOtherAndTellsColoursThatHeightWouldChange) {
    constexpr DWORD bt601 = 0x10081, bt709 = 0xA8081;  // matrix 2 in bits 15 to 17; all that was told
    VideoInfo2Type large(720, 480, mediaSubtypeNv12), told = large, small(512, 384, mediaSubtypeNv12);
    told.header.dwControlFlags = bt709;
    small.header.dwControlFlags = 1;
    const VideoInfoType first(720, 480, mediaSubtypeNv12), high(1280, 720, mediaSubtypeYuy2);
    using Offers = std::vector<OfferSeen>;
    EXPECT_EQ((Offers{{{1080, 720}, true, bt601}, {{720, 480}, true, 0}}), OffersFor(large, 2, 0));
    EXPECT_EQ((Offers{{{1080, 720}, true, bt709}, {{720, 480}, true, bt709}}), OffersFor(told, 2, 0));
    EXPECT_EQ((Offers{{{768, 576}, true, 1}, {{512, 384}, true, 1}}), OffersFor(small, 2, 0));
    EXPECT_EQ((Offers{{{1080, 720}, true, bt601}, {{1080, 720}, false, 0}, {{720, 480}, false, 0}}),
              OffersFor(first, 2, 0));
    EXPECT_EQ((Offers{{{720, 480}, false, 0}}), OffersFor(first, 0, 0));
    EXPECT_EQ((Offers{{{1280, 720}, false, 0}}), OffersFor(high, 2, 0)) << "shut out, so passed on as it is";
    EXPECT_EQ((Offers{{{1920, 1080}, false, 0}, {{1280, 720}, false, 0}}), OffersFor(high, 2, 1));
}

TEST(VideoEffect, TakesTypesThatCanHoldThePictureAndNoOthers) {
    const TestObject effect = MakeEffect(2);
    const auto input = [&](const std::function<void(VideoInfo2Type&)>& change) {
        VideoInfo2Type type(96, 64, mediaSubtypeNv12);
        change(type);
        return effect.media->SetInputType(0, type.Type(), DMO_SET_TYPEF_TEST_ONLY);
    };
    const std::pair<HRESULT, std::function<void(VideoInfo2Type&)>> inputs[] = {
        {S_OK, [](auto& type) { type.Bitmap().biHeight = -64; }},
        {S_OK,
         [](auto& type) {
             type.header.rcSource = {2, 4, 75, 63};
         }},
        {S_OK,
         [](auto& type) {
             type.header.rcSource = {0, 0, 90, 60}, type.Target() = {0, 0, 999, -7};
         }},
        {S_OK, [](auto& type) { type.Bitmap().biBitCount = 0; }},
        {S_FALSE, [](auto& type) { type.Bitmap().biWidth = 95; }},
        {S_FALSE,
         [](auto& type) {
             type.header.rcSource = {1, 0, 90, 60};
         }},
        {S_FALSE,
         [](auto& type) {
             type.header.rcSource = {0, 3, 90, 60};
         }},
        {S_FALSE,
         [](auto& type) {
             type.header.rcSource = {-2, 0, 90, 60};
         }},
        {S_FALSE,
         [](auto& type) {
             type.header.rcSource = {0, 0, 97, 60};
         }},
        {S_FALSE,
         [](auto& type) {
             type.Target() = {0, 0, 96, 65};
         }},
        {S_FALSE,
         [](auto& type) {
             type.Target() = {INT32_MIN, 0, INT32_MAX, 60};
         }},
        {S_FALSE,
         [](auto& type) {
             type.Target() = {0, 0, 15, 60};
         }},
        {S_FALSE, [](auto& type) { type.formatBytes = sizeof(VIDEOINFOHEADER2) - 1; }},
        {S_FALSE, [](auto& type) { type.subtype.Data1 ^= 1; }}};
    for (const auto& [expected, change] : inputs) EXPECT_EQ(expected, input(change)) << &change - &inputs[0].second;
    EXPECT_EQ(S_OK, effect.media->SetInputType(0, VideoInfo2Type(96, 64, mediaSubtypeNv12).Type(), 0));
    const auto output = [&](int32_t width, int32_t height, const RECT& rect, const GUID& subtype, DWORD flags) {
        VideoInfo2Type type(width, height, subtype);
        type.Target() = rect;
        return effect.media->SetOutputType(0, type.Type(), flags);
    };
    constexpr DWORD test = DMO_SET_TYPEF_TEST_ONLY;
    EXPECT_EQ(S_OK, output(144, 96, {}, mediaSubtypeNv12, test));
    EXPECT_EQ(S_OK, output(256, 128, {16, 2, 160, 98}, mediaSubtypeNv12, test));
    EXPECT_EQ(S_FALSE, output(144, 96, {}, mediaSubtypeYv12, test));
    EXPECT_EQ(S_FALSE, output(146, 96, {}, mediaSubtypeNv12, test));
    EXPECT_EQ(S_FALSE, output(160, 96, {18, 0, 162, 96}, mediaSubtypeNv12, test));
    EXPECT_EQ(S_OK, output(96, 64, {}, mediaSubtypeNv12, 0)) << "a host may keep the size";
    EXPECT_FALSE(effect.ScalingActive());
    ReceivedType type;
    EXPECT_EQ(S_OK, effect.media->SetInputType(0, VideoInfo2Type(64, 64, mediaSubtypeNv12).Type(), 0));
    EXPECT_EQ(DMO_E_TYPE_NOT_SET, effect.media->GetOutputCurrentType(0, type.Out())) << "it went with another picture";
    for (DWORD i = 0; i < 4; ++i) {
        EXPECT_EQ(S_OK, effect.media->GetInputType(0, i, type.Out()));
        EXPECT_TRUE(IsEqualGUID(effectFormatsKnown[i].subtype, type.Get().subtype)) << "listed, though one is set";
    }
}

TEST(VideoEffect, RefusesBuffersThatEndBeforeThePictureAndTellsLengthAndTimes) {
    const TestObject effect = MakeEffect(2);
    DWORD size = 0, alignment = 0;
    for (const EffectFormat& format : effectFormatsKnown) {
        const HostRoom room = {2, 2, 6, 1};
        const PictureKind source{usual, format.format}, target{{96, 72}, format.format};
        EffectStream stream(*effect.media, format, usual, room, room);
        EXPECT_EQ(S_OK, effect.media->GetOutputSizeInfo(0, &size, &alignment));
        EXPECT_EQ(BytesOfRoom(target, room), size);
        size_t ends[2] = {};
        for (const auto& [kind, end] : {std::pair(source, &ends[0]), {target, &ends[1]}})
            GuardedPicture(kind).ForEachByte([&, kind = kind, end = end](int32_t plane, int32_t x, int32_t y, uint8_t) {
                *end = std::max(*end, PlaceInRoom(kind, room, plane, x, y) + 1);
            });
        for (const auto& [shorterIn, shorterOut] : {std::pair(1, 0), {0, 1}, {0, 0}}) {
            FakeBuffer in(ends[0] - static_cast<size_t>(shorterIn)), out(ends[1] - static_cast<size_t>(shorterOut), 7);
            DMO_OUTPUT_DATA_BUFFER output = {&out, 99, 5, 6};
            EXPECT_EQ(S_OK, effect.media->ProcessInput(0, &in, DMO_INPUT_DATA_BUFFERF_TIME, 40, 50));
            EXPECT_EQ(shorterIn + shorterOut == 0 ? S_OK : E_INVALIDARG,
                      effect.media->ProcessOutput(0, 1, &output, nullptr));
            EXPECT_EQ(shorterIn + shorterOut != 0, out.HoldsOnly(7));
            EXPECT_EQ(std::tuple(size, DWORD{DMO_OUTPUT_DATA_BUFFERF_TIME}, 40, 6),
                      std::tuple(out.length, output.dwStatus, output.rtTimestamp, output.rtTimelength));
            effect.media->Flush();
        }
    }
}

/// A host's stream, which gives a few bytes at once.
class ByteStream final : public CountedFake<IStream> {
public:
    ByteStream() : CountedFake(iidStream) {}

    std::vector<uint8_t> bytes;
    size_t place = 0;
    ULONG atOnce = 5;

    void Become(std::vector<uint8_t> other) {
        bytes = std::move(other);
        place = 0;
    }

    HRESULT STDMETHODCALLTYPE Read(void* target, ULONG count, ULONG* read) override {
        *read = std::min({count, atOnce, static_cast<ULONG>(bytes.size() - place)});
        std::copy_n(bytes.begin() + static_cast<ptrdiff_t>(place), *read, static_cast<uint8_t*>(target));
        place += *read;
        return *read == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Write(const void* source, ULONG count, ULONG* written) override {
        const auto* first = static_cast<const uint8_t*>(source);
        bytes.insert(bytes.end(), first, first + count);
        *written = count;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
};

TEST(VideoEffect, KeepsItsSettingsInAStreamAndTakesNoneFromABadOne) {
    const TestObject effect = MakeEffect(2), other = MakeEffect(1);
    const auto kept = Ask<IPersistStream>(effect.media.get(), iidPersistStream);
    const auto loaded = Ask<IPersistStream>(other.media.get(), iidPersist);
    CLSID id = {};
    ULARGE_INTEGER most = {};
    EXPECT_EQ(S_OK, kept->GetClassID(&id));
    EXPECT_TRUE(IsEqualGUID(clsidVideoEffect, id));
    EXPECT_EQ(S_OK, kept->GetSizeMax(&most));
    for (const HRESULT result :
         {kept->Load(nullptr), kept->Save(nullptr, FALSE), kept->GetClassID(nullptr), kept->GetSizeMax(nullptr)})
        EXPECT_EQ(E_POINTER, result);
    effect.settings->put_Sharpness(1.75F);
    effect.settings->put_AllowHD(1);
    effect.settings->put_EnableLighting(0);
    EXPECT_EQ(S_OK, kept->IsDirty());
    ByteStream file;
    EXPECT_EQ(S_OK, kept->Save(&file, FALSE));
    EXPECT_EQ(S_OK, kept->IsDirty());
    file.bytes.clear();
    EXPECT_EQ(S_OK, kept->Save(&file, TRUE));
    EXPECT_EQ(std::pair(S_FALSE, static_cast<size_t>(most.QuadPart)), std::pair(kept->IsDirty(), file.bytes.size()));
    const auto good = file.bytes;
    for (size_t spoilt = 0; spoilt <= good.size(); ++spoilt) {
        file.Become(good);
        const bool fits =
            spoilt >= 24 || (spoilt >= 8 && spoilt < 16);  // not: mark, version, switches, what is reserved
        if (spoilt < good.size()) file.bytes[spoilt] ^= 0x40;
        EXPECT_EQ(fits ? S_OK : E_FAIL, loaded->Load(&file)) << spoilt;
        file.Become({good.begin(), good.begin() + static_cast<ptrdiff_t>(std::min(spoilt, good.size() - 1))});
        EXPECT_EQ(E_FAIL, loaded->Load(&file)) << spoilt;
    }
    for (const int flipped : {1, 2, 4}) {  // every switch is taken over
        file.Become(good);
        file.bytes[16] = static_cast<uint8_t>(good[16] ^ flipped);
        EXPECT_EQ(S_OK, loaded->Load(&file));
        EXPECT_EQ(S_FALSE, loaded->IsDirty());
    }
    file.Become(good);
    EXPECT_EQ(S_OK, loaded->Load(&file));
    float sharpness = 0;
    unsigned mode = 0;
    int allowHd = 0, lighting = 1;
    other.settings->get_Sharpness(&sharpness);
    other.settings->get_CVXMode(&mode);
    other.settings->get_AllowHD(&allowHd);
    other.settings->get_EnableLighting(&lighting);
    EXPECT_EQ(std::tuple(1.75F, 2U, 1, 0, S_FALSE), std::tuple(sharpness, mode, allowHd, lighting, loaded->IsDirty()));
}

}  // namespace
}  // namespace clarivex
