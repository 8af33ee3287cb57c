// The plug-in between two DirectShow pins, inside the system's own wrapper for media objects: what comes out of the
// graph is what the object gives when it is driven by hand.

#include <dshow.h>

#include <dmodshow.h>

#include "host/buffer_layout.h"
#include "host/player.h"
#include "shell/settings.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/counted_fake.h"
#include "tests/support/synthetic_video.h"
#include "tests/support/test.h"
#include "tests/support/video_types.h"

namespace clarivex {
namespace {

constexpr GUID clsidWrapper = {0x94297043, 0xBD82, 0x4DFD, {0xB0, 0xDE, 0x81, 0x77, 0x73, 0x9C, 0x6D, 0x20}};
constexpr GUID iidWrapper = {0x52D6F586, 0x9F0F, 0x4824, {0x8F, 0xC8, 0xE3, 0x2C, 0xA0, 0x49, 0x30, 0xC2}};
constexpr GUID videoEffects = {0xD990EE14, 0x776C, 0x4723, {0xBE, 0x46, 0x3D, 0xA2, 0xF5, 0x6F, 0x10, 0xB9}};

constexpr PictureSize sourceSize{64, 48};
constexpr size_t frameCount = 4;
constexpr Ratio frameRate{25, 1};

using Bytes = std::vector<uint8_t>;

// Pictures in the order Y, U, V.
std::vector<Bytes> SourceFrames() {
    SyntheticVideo video(PixelFormat::iyuv, sourceSize.width, sourceSize.height, false);
    std::vector<Bytes> frames;
    for (size_t frame = 0; frame < frameCount; ++frame) {
        video.NextFrame();
        frames.push_back(video.input);
    }
    return frames;
}

// S_FALSE and other kinds of success pass.
void RequireSuccess(HRESULT result, const char* what) { Require(FAILED(result) ? result : S_OK, what); }

template <class Interface>
ComPointer<Interface> Create(const GUID& classId, const GUID& iid) {
    void* made = nullptr;
    RequireSuccess(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iid, &made), "a class is missing");
    return ComPointer<Interface>(static_cast<Interface*>(made));
}

// The filter's neighbour on one side, which belongs to no filter itself: it takes every type and keeps every frame. It
// does what a filter's own pins ask of it and no more.
class GraphPin final : public CountedFake<IPin>, public IMemInputPin {
public:
    explicit GraphPin(PIN_DIRECTION side) : CountedFake(IID_IPin), direction(side) {}

    BITMAPINFOHEADER picture = {};  // of the type agreed on
    std::vector<Bytes> frames;      // whole buffers, whatever length the samples tell
    std::vector<std::array<REFERENCE_TIME, 2>> times;
    int ends = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!IsEqualGUID(iid, IID_IMemInputPin)) return CountedFake::QueryInterface(iid, out);
        AddRef();
        *out = static_cast<IMemInputPin*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return CountedFake::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return CountedFake::Release(); }

    HRESULT STDMETHODCALLTYPE QueryDirection(PIN_DIRECTION* side) override {
        *side = direction;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin*, const AM_MEDIA_TYPE* type) override {
        if (type->cbFormat < sizeof(VIDEOINFOHEADER)) return VFW_E_TYPE_NOT_ACCEPTED;
        picture = reinterpret_cast<const VIDEOINFOHEADER*>(type->pbFormat)->bmiHeader;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override {
        BYTE* data = nullptr;
        if (const HRESULT got = sample->GetPointer(&data); FAILED(got)) return got;
        frames.emplace_back(data, data + sample->GetSize());
        auto& [start, stop] = times.emplace_back();
        sample->GetTime(&start, &stop);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EndOfStream() override {
        ++ends;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator**) override { return VFW_E_NO_ALLOCATOR; }
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator*, BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReceiveMultiple(IMediaSample**, LONG, LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Connect(IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Disconnect() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ConnectedTo(IPin**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ConnectionMediaType(AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryId(LPWSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryAccept(const AM_MEDIA_TYPE*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryInternalConnections(IPin**, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BeginFlush() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EndFlush() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return S_OK; }

private:
    const PIN_DIRECTION direction;
};

struct GraphCase {
    SampleFormat format;
    GUID subtype;
    unsigned mode;
};

// Source, wrapper and sink, connected and ready to run.
class Graph {
public:
    Graph(const GraphCase& wanted, GraphPin& sink) : layout(wanted.format, sourceSize) {
        RequireSuccess(Ask<IDMOWrapperFilter>(wrapper.get(), iidWrapper)->Init(clsidMediaObject, videoEffects), "Init");
        Ask<ICVXSettings>(wrapper.get(), iidCvxSettings)->put_CVXMode(wanted.mode);
        FindPins();
        VideoInfoType type(sourceSize.width, sourceSize.height, wanted.subtype);
        type.Target() = {0, 0, sourceSize.width, sourceSize.height};  // as a decoder's types have it
        type.header.AvgTimePerFrame = FrameStart(1, frameRate);
        RequireSuccess(in->ReceiveConnection(&source, reinterpret_cast<const AM_MEDIA_TYPE*>(type.Type())), "no input");
        input = Ask<IMemInputPin>(in.get(), IID_IMemInputPin);
        ALLOCATOR_PROPERTIES wishes = {2, static_cast<LONG>(layout.Bytes()), 1, 0}, actual = {};
        RequireSuccess(allocator->SetProperties(&wishes, &actual), "no buffers of this size");
        RequireSuccess(input->NotifyAllocator(allocator.get(), FALSE), "the input refuses the buffers");
        RequireSuccess(allocator->Commit(), "no memory");
        RequireSuccess(out->Connect(&sink, nullptr), "the output is not connected");
    }
    ~Graph() {
        out->Disconnect();
        in->Disconnect();
        EXPECT_EQ(1, source.references);
    }

    // On a thread of its own, as a decoder's would be.
    void Play() {
        RequireSuccess(wrapper->Pause(), "the wrapper does not pause");
        RequireSuccess(wrapper->Run(0), "the wrapper does not run");
        std::thread([this] {
            const auto frames = SourceFrames();
            for (size_t frame = 0; frame < frameCount; ++frame) EXPECT_EQ(S_OK, Push(frames[frame], frame));
            EXPECT_EQ(S_OK, in->EndOfStream());
        }).join();
        RequireSuccess(wrapper->Stop(), "the wrapper does not stop");
    }

private:
    void FindPins() {
        IPin* pins[2] = {};
        ULONG found = 0;
        IEnumPins* all = nullptr;
        RequireSuccess(wrapper->EnumPins(&all), "EnumPins");
        all->Next(2, pins, &found);
        all->Release();
        in.reset(pins[0]);
        out.reset(pins[1]);
        Require(found == 2 ? S_OK : E_FAIL, "the wrapper lacks a pin");
    }

    // Sends one frame down the graph and returns when it has passed.
    HRESULT Push(const Bytes& samples, size_t frame) {
        IMediaSample* made = nullptr;
        RequireSuccess(allocator->GetBuffer(&made, nullptr, nullptr, 0), "no buffer");
        const ComPointer<IMediaSample> sample(made);
        BYTE* data = nullptr;
        sample->GetPointer(&data);
        layout.Put({sourceSize, samples}, {data, layout.Bytes()});
        sample->SetActualDataLength(static_cast<LONG>(layout.Bytes()));
        REFERENCE_TIME start = FrameStart(frame, frameRate), stop = FrameStart(frame + 1, frameRate);
        sample->SetTime(&start, &stop);
        return input->Receive(sample.get());
    }

    const BufferLayout layout;
    GraphPin source{PINDIR_OUTPUT};
    const ComPointer<IBaseFilter> wrapper = Create<IBaseFilter>(clsidWrapper, IID_IBaseFilter);
    const ComPointer<IMemAllocator> allocator = Create<IMemAllocator>(CLSID_MemoryAllocator, IID_IMemAllocator);
    ComPointer<IPin> in, out;
    Owned<IMemInputPin> input;
};

Bytes Joined(const PicturePlanes& planes) {
    Bytes all;
    for (const auto& plane : planes) all.insert(all.end(), plane.begin(), plane.end());
    return all;
}

// From a freshly loaded module, whose noise and caption start where those of the graph did.
std::vector<Bytes> FramesByHand(const GraphCase& wanted, PictureSize size) {
    EXPECT_EQ(nullptr, GetModuleHandleA("WMP_CVX.dll"));
    const PluginModule plugin;
    ComPointer<IMediaObject> media(plugin.Make<IMediaObject>(iidMediaObject).release());
    Player player(std::move(media), {wanted.format, sourceSize, frameRate, {}}, {.mode = wanted.mode});
    EXPECT_EQ(Negotiated::playing, player.Negotiate());
    EXPECT_EQ(size, player.OutputSize());
    std::vector<Bytes> frames;
    for (const Bytes& samples : SourceFrames()) frames.push_back(Joined(player.Play(samples)));
    return frames;
}

void ExpectFramesByHand(const GraphCase& wanted) {
    GraphPin sink(PINDIR_INPUT);
    {
        const PluginModule plugin;
        DWORD offer = 0;  // of the class to this process
        Require(CoRegisterClassObject(clsidMediaObject, plugin.Factory().get(), CLSCTX_INPROC_SERVER,
                                      REGCLS_MULTIPLEUSE, &offer),
                "CoRegisterClassObject");
        Graph(wanted, sink).Play();
        CoRevokeClassObject(offer);
        EXPECT_EQ(S_OK, plugin.CanUnload());  // nothing of it is held any more
    }
    EXPECT_EQ(std::pair(1, 1), std::pair(sink.references.load(), sink.ends));
    const BufferLayout layout(wanted.format, {sink.picture.biWidth, sink.picture.biHeight});
    const auto expected = FramesByHand(wanted, layout.Size());
    ASSERT_EQ(expected.size(), sink.frames.size());
    EXPECT_NE(expected[0], expected[1]);  // equal frames would hide one that comes late
    for (size_t frame = 0; frame < frameCount; ++frame) {
        Bytes scratch;
        ASSERT_GE(sink.frames[frame].size(), layout.Bytes());
        EXPECT_EQ(FrameStart(frame, frameRate), sink.times[frame][0]);
        EXPECT_EQ(FrameStart(frame + 1, frameRate), sink.times[frame][1]);
        EXPECT_TRUE(expected[frame] == Joined(layout.Get(sink.frames[frame], scratch))) << "frame " << frame;
    }
}

TEST(DirectShowGraph, GivesTheFramesThatTheObjectGivesByHand) {
    const UserRegistry registry;  // nobody's settings
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    for (const unsigned mode : {0U, 2U}) {
        ExpectFramesByHand({SampleFormat::yv12, mediaSubtypeYv12, mode});
        ExpectFramesByHand({SampleFormat::iyuv, mediaSubtypeIyuv, mode});
        ExpectFramesByHand({SampleFormat::yuy2, mediaSubtypeYuy2, mode});
    }
    CoUninitialize();
}

}  // namespace
}  // namespace clarivex
