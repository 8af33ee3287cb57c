// Films side by side in one process: each looks as it does alone, whatever else is played, made or asked meanwhile.

#include "engine/enhancement_pass.h"
#include "shell/caption.h"
#include "tests/support/host_stream.h"
#include "tests/support/open_object.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

struct FilmCase {
    GUID subtype;
    HostSize size;
    unsigned mode;
    float sharpness;
    int lighting;
};

// Sizes whose pictures fit into each other's memory, among them two that come out alike; both kinds of layout; pictures
// enlarged along their rows only, and one that nothing is written of.
const FilmCase films[] = {
    {mediaSubtypeYv12, {320, 240}, alwaysEnlarged, 1.0F, 1}, {mediaSubtypeYv12, {48, 32}, alwaysEnlarged, 2.0F, 1},
    {mediaSubtypeYuy2, {43, 32}, alwaysEnlarged, 0.5F, 1},   {mediaSubtypeYuy2, {64, 48}, neverEnlarged, 2.0F, 0},
    {mediaSubtypeIyuv, {64, 48}, neverEnlarged, 1.5F, 1},    {mediaSubtypeYv12, {36, 1030}, alwaysEnlarged, 1.0F, 0},
    {mediaSubtypeYv12, {64, 48}, neverEnlarged, 0.0F, 1},    {mediaSubtypeYuy2, {320, 240}, alwaysEnlarged, 2.0F, 1},
};

/// What a stream makes of its frame's bytes before noise and caption, which belong to the process, go over it.
struct Look {
    std::vector<uint8_t> samples;
    float black, white;

    bool operator==(const Look&) const = default;
};

class Film : public OpenTestObject {
public:
    explicit Film(const FilmCase& film) { Become(film); }
    ~Film() { object.media->Flush(); }

    /// A new stream of the same object.
    void Become(const FilmCase& film) {
        object.settings->put_Sharpness(film.sharpness);
        object.settings->put_EnableLighting(film.lighting);
        Negotiate(object, film.subtype, film.size, film.mode);
        const HostPicture source(film.subtype, film.size.width, film.size.height);
        in.resize(source.BytesOf(film.size.width, film.size.height));
        out.resize(2 * 1024 * 1024);
        frame = 0;
    }

    HRESULT Play() {
        for (size_t i = 0; i < in.size(); ++i)
            in[i] = static_cast<uint8_t>(40 + (i * 7 + i / 90 * 31 + static_cast<size_t>(frame) * 13) % 150);
        ++frame;
        FakeBuffer from{std::span(in)}, to{std::span(out)};
        return PlayFrame(object, from, to);
    }

    Look NextLook() {
        EXPECT_EQ(S_OK, Play());
        StreamState& stream = open->Stream();
        Look look{{}, stream.engine.lighting.trackedBlack, stream.engine.lighting.trackedWhite};
        const FrameSize size{stream.lastShape.width, stream.lastShape.height};
        PassRequest request;
        request.correction.emplace();  // its levels have been followed
        const PassPlan plan = MakePassPlan(stream.settings, size, request);
        const SourceImage source{PlanesWithoutGaps(in.data(), size.width, size.height), in.data() + in.size(), {}};
        WorkingImage image;
        image.Resize(plan.target.width, plan.target.height);
        RunPass(plan, source, image.Planes(), stream.engine, scalarKernels);
        look.samples.assign(static_cast<const uint8_t*>(image.Planes().luma.data), image.End());
        return look;
    }

    std::vector<Look> NextLooks(int count) {
        std::vector<Look> looks;
        while (count-- > 0) looks.push_back(NextLook());
        return looks;
    }

private:
    std::vector<uint8_t> in, out;
    int frame = 0;
};

/// The levels of the first film of a process are adopted at once: here that has been.
class FilmsInOneProcess : public testing::Test {
protected:
    FilmsInOneProcess() { Film(films[0]).Play(); }
    ~FilmsInOneProcess() override { ShowCaption(true); }

    static std::vector<std::vector<Look>> LooksAlone(int count) {
        std::vector<std::vector<Look>> alone;
        for (const FilmCase& film : films) alone.push_back(Film(film).NextLooks(count));
        return alone;
    }
};
using FilmsOnThreads = FilmsInOneProcess;

TEST_F(FilmsInOneProcess, LookAsTheyDoAloneWhateverRanBefore) {
    const auto alone = LooksAlone(3);
    for (size_t a = 0; a < std::size(films); ++a)
        for (size_t b = 0; b < std::size(films); ++b) {
            ShowCaption((a + b) % 2 == 0);
            Film first(films[a]), second(films[b]);
            for (size_t frame = 0; frame < 3; ++frame) {
                EXPECT_EQ(alone[a][frame], first.NextLook()) << a << " beside " << b;
                EXPECT_EQ(alone[b][frame], second.NextLook()) << b << " beside " << a;
            }
            first.Become(films[b]);
            EXPECT_EQ(alone[b], first.NextLooks(3)) << b << " after " << a << " in one object";
        }
}

/// What a settings dialog and a curious host may ask at any time; nothing of it changes a film.
void AskEverything(TestObject& object, const FilmCase& film) {
    ReceivedType received;
    DWORD flags = 0, size = 0, alignment = 0;
    EXPECT_EQ(S_OK, object.media->GetOutputType(0, 0, received.Out()));
    EXPECT_EQ(S_OK, object.media->GetInputCurrentType(0, received.Out()));
    EXPECT_EQ(S_OK, object.media->GetOutputSizeInfo(0, &size, &alignment));
    EXPECT_EQ(S_OK, object.media->GetInputStatus(0, &flags));
    EXPECT_EQ(film.mode == alwaysEnlarged, object.ScalingActive());
    object.settings->put_Sharpness(film.sharpness);
    object.settings->put_EnableLighting(film.lighting);
}

TEST_F(FilmsOnThreads, LookAsTheyDoAloneWhileObjectsComeAndGoAndQuestionsAreAsked) {
    constexpr int frames = 25;
    constexpr size_t played[] = {0, 7, 4};
    const auto alone = LooksAlone(frames);
    Film films3[] = {Film(films[0]), Film(films[7]), Film(films[4])};
    std::atomic<int> playing = static_cast<int>(std::size(played));
    std::vector<std::thread> threads;
    for (size_t i = 0; i < std::size(played); ++i) {
        threads.emplace_back([&, i] {
            EXPECT_TRUE(alone[played[i]] == films3[i].NextLooks(frames)) << "film " << played[i];
            --playing;
        });
        threads.emplace_back([&, i] {
            while (playing > 0) AskEverything(films3[i].object, films[played[i]]);
        });
    }
    for (size_t made = 0; playing > 0; ++made) {
        ShowCaption(made % 2 == 0);
        EXPECT_EQ(S_OK, Film(films[made % std::size(films)]).Play());
    }
    for (std::thread& thread : threads) thread.join();
}

/// What a host may hear that does not keep to the order.
bool IsExpected(HRESULT result) {
    static const std::set<HRESULT> expected = {S_OK,         S_FALSE,      DMO_E_NOTACCEPTING,     DMO_E_TYPE_NOT_SET,
                                               E_UNEXPECTED, E_INVALIDARG, DMO_E_TYPE_NOT_ACCEPTED};
    return expected.contains(result);
}

TEST_F(FilmsOnThreads, AHostThatBreaksTheOrderHearsErrorsAndMeetsNoFreedMemory) {
    constexpr int frames = 60;
    Film film(films[0]);
    IMediaObject& media = *film.object.media;
    const size_t bytes = 500'000;
    FakeBuffer in(bytes, 100), otherIn(bytes, 50), out(bytes), otherOut(bytes);
    std::atomic<int> playing = 2;
    const auto play = [&](FakeBuffer& from, FakeBuffer& to) {
        for (int i = 0; i < frames; ++i) EXPECT_TRUE(IsExpected(PlayFrame(film.object, from, to)));
        --playing;
    };
    std::thread player(play, std::ref(in), std::ref(out)), otherPlayer(play, std::ref(otherIn), std::ref(otherOut));
    std::thread emptier([&] {
        for (int i = 0; playing > 0; ++i) EXPECT_EQ(S_OK, i % 2 == 0 ? media.Flush() : media.FreeStreamingResources());
    });
    VideoInfoType small(64, 48), usual(320, 240);
    for (int i = 0; playing > 0; ++i) {
        ReceivedType offered;
        film.object.settings->put_CVXMode(i % 3 == 0 ? neverEnlarged : alwaysEnlarged);
        film.object.settings->put_Sharpness(static_cast<float>(i % 5) / 2);
        film.object.player->SetEnable(i % 7 != 0);
        if (i % 5 == 0) media.SetInputType(0, nullptr, DMO_SET_TYPEF_CLEAR);
        EXPECT_TRUE(IsExpected(media.SetInputType(0, (i % 2 == 0 ? small : usual).Type(), 0)));
        EXPECT_TRUE(IsExpected(media.GetOutputType(0, 0, offered.Out())));
        const bool settles = i % 4 != 0;
        EXPECT_TRUE(!settles || IsExpected(media.SetOutputType(0, &offered.Get(), 0)));
    }
    for (std::thread* thread : {&player, &otherPlayer, &emptier}) thread->join();
    media.Flush();
    for (const FakeBuffer* buffer : {&in, &otherIn, &out, &otherOut}) EXPECT_EQ(1, buffer->references.load());
}

/// A buffer that calls its host's object back from inside its own methods.
class MeddlingBuffer final : public FakeBuffer {
public:
    using FakeBuffer::FakeBuffer;
    std::function<void()> meddle;

    HRESULT STDMETHODCALLTYPE GetBufferAndLength(BYTE** buffer, DWORD* currentLength) override {
        if (meddle) meddle();
        return FakeBuffer::GetBufferAndLength(buffer, currentLength);
    }
};

TEST_F(FilmsInOneProcess, ABufferMayCallTheObjectFromInsideAFrame) {
    Film film(films[0]);
    IMediaObject& media = *film.object.media;
    FakeBuffer in(500'000, 100), another(500'000, 100);
    MeddlingBuffer out(500'000);
    DMO_OUTPUT_DATA_BUFFER output = {&out, 0, 0, 0};
    const auto playWith = [&](std::function<void()> meddle) {
        EXPECT_EQ(S_OK, media.ProcessInput(0, &in, 0, 0, 0));
        out.meddle = std::move(meddle);
        return media.ProcessOutput(0, 1, &output, nullptr);
    };
    EXPECT_EQ(S_OK, playWith([&] {
                  DWORD flags = 9;
                  EXPECT_EQ(DMO_E_NOTACCEPTING, media.ProcessInput(0, &another, 0, 0, 0));
                  EXPECT_EQ(S_OK, media.GetInputStatus(0, &flags));
                  EXPECT_EQ(0U, flags);
                  EXPECT_EQ(E_UNEXPECTED, media.ProcessOutput(0, 1, &output, nullptr));
              }));
    EXPECT_EQ(S_OK, playWith([&] { EXPECT_EQ(S_OK, media.Flush()); }));
    EXPECT_EQ(1, in.references.load());
    out.contentResult = E_FAIL;  // what was flushed does not come back with a failure
    EXPECT_EQ(E_FAIL, playWith([&] { media.FreeStreamingResources(); }));
    EXPECT_EQ(1, in.references.load());
    out.contentResult = S_OK;
    EXPECT_EQ(S_OK, playWith([&] {
                  media.Flush();
                  EXPECT_EQ(S_OK, media.ProcessInput(0, &another, 0, 0, 0));
              }));
    EXPECT_EQ(2, another.references.load());  // waits for the next frame
    EXPECT_EQ(DMO_E_NOTACCEPTING, media.ProcessInput(0, &in, 0, 0, 0));
    media.Flush();
    EXPECT_EQ(1, another.references.load());
    std::ranges::fill(out.Bytes(), uint8_t{7});
    EXPECT_EQ(S_OK, playWith([&] { media.SetInputType(0, nullptr, DMO_SET_TYPEF_CLEAR); }));
    EXPECT_NE(7, out.Bytes()[0]);  // the frame goes on with the type it has begun with
    out.meddle = {};
    film.Become(films[0]);
    EXPECT_EQ(S_OK, playWith({}));
}

/// The object of a media type, which calls its host's object back when the type is copied.
class MeddlingUnknown final : public CountedFake<IUnknown> {
public:
    MeddlingUnknown() : CountedFake(iidUnknown) {}
    std::function<void()> meddle;

    ULONG STDMETHODCALLTYPE AddRef() override {
        if (auto once = std::exchange(meddle, {})) once();
        return CountedFake::AddRef();
    }
};

TEST_F(FilmsInOneProcess, AnOfferThatATypeOvertakesDecidesNothing) {
    Film film(films[0]);
    IMediaObject& media = *film.object.media;
    MeddlingUnknown meddler;
    VideoInfoType slow(320, 240), quick(64, 48);
    DMO_MEDIA_TYPE type = *slow.Type();
    type.pUnk = &meddler;
    ReceivedType offered, quickOffered;
    ASSERT_EQ(S_OK, media.SetInputType(0, &type, 0));
    meddler.meddle = [&] {
        EXPECT_EQ(S_OK, media.SetInputType(0, quick.Type(), 0));
        EXPECT_EQ(S_OK, media.GetOutputType(0, 0, quickOffered.Out()));
    };
    EXPECT_EQ(S_OK, media.GetOutputType(0, 0, offered.Out()));
    EXPECT_FALSE(meddler.meddle);
    EXPECT_EQ(64, film.open->NextRequest().sourceWidth);
    EXPECT_EQ(64, film.open->NextRequest().source.width);
    offered.Out();
    EXPECT_EQ(1, meddler.references.load());
}

}  // namespace
}  // namespace clarivex
