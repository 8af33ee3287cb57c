// The plug-in between two DirectShow pins, inside the system's own wrapper for media objects: what comes out of the
// graph is what the object gives when it is driven by hand.

#include <dshow.h>

#include <dmodshow.h>

#include "host/buffer_layout.h"
#include "host/player.h"
#include "shell/settings.h"
#include "tests/shell/windows/com_apartment.h"
#include "tests/shell/windows/graph_pins.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/user_registry.h"
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

std::vector<uint8_t> Samples(size_t frame) {
    std::vector<uint8_t> samples;
    for (int32_t plane = 0; plane < 3; ++plane) {
        const int32_t width = plane == 0 ? sourceSize.width : sourceSize.ChromaWidth();
        const int32_t height = plane == 0 ? sourceSize.height : sourceSize.ChromaHeight();
        for (int32_t i = 0; i < width * height; ++i)
            samples.push_back(SyntheticSample(plane, i % width, i / width, static_cast<int32_t>(frame)));
    }
    return samples;
}

struct GraphCase {
    SampleFormat format;
    GUID subtype;
    unsigned mode;
};

// Source, wrapper and sink, connected and ready to run.
class Graph {
public:
    explicit Graph(const GraphCase& wanted)
        : type(sourceSize.width, sourceSize.height, wanted.subtype), layout(wanted.format, sourceSize) {
        type.Target() = {0, 0, sourceSize.width, sourceSize.height};  // as a decoder's types have it
        type.header.AvgTimePerFrame = FrameStart(1, frameRate);
        const auto init = Ask<IDMOWrapperFilter>(wrapper.get(), iidWrapper);
        Require(init->Init(clsidMediaObject, videoEffects), "the wrapper does not take the plug-in");
        Configure(wanted);
        in = WrapperPin(PINDIR_INPUT);
        out = WrapperPin(PINDIR_OUTPUT);
        source.ConnectTo(*in, reinterpret_cast<const AM_MEDIA_TYPE&>(*type.Type()), layout.Bytes());
        RequireSuccess(out->Connect(&sink, nullptr), "the output is not connected");
    }
    ~Graph() {
        out->Disconnect();
        in->Disconnect();
        EXPECT_EQ(1, source.references);
        EXPECT_EQ(1, sink.references);
    }

    // On a thread of its own, as a decoder's would be.
    void Play() {
        RequireSuccess(wrapper->Pause(), "the wrapper does not pause");
        RequireSuccess(wrapper->Run(0), "the wrapper does not run");
        std::thread([this] { PushAll(); }).join();
        RequireSuccess(wrapper->Stop(), "the wrapper does not stop");
    }
    const SinkPin& Result() const { return sink; }

private:
    // The same as a Player sets, through the wrapper that contains the object.
    void Configure(const GraphCase& wanted) {
        const PlayerSettings like;
        const auto settings = Ask<ICVXSettings>(wrapper.get(), iidCvxSettings);
        Require(settings != nullptr ? S_OK : E_NOINTERFACE, "the wrapper hides the settings");
        settings->put_CVXMode(wanted.mode);
        settings->put_Sharpness(like.sharpness);
    }

    ComPointer<IPin> WrapperPin(PIN_DIRECTION wanted) const {
        IEnumPins* all = nullptr;
        RequireSuccess(wrapper->EnumPins(&all), "EnumPins");
        const ComPointer<IEnumPins> pins(all);
        for (IPin* next = nullptr; pins->Next(1, &next, nullptr) == S_OK;) {
            ComPointer<IPin> pin(next);
            PIN_DIRECTION direction = {};
            pin->QueryDirection(&direction);
            if (direction == wanted) return pin;
        }
        throw std::runtime_error("the wrapper lacks a pin");
    }

    void PushAll() {
        std::vector<uint8_t> buffer(layout.Bytes());
        for (size_t frame = 0; frame < frameCount; ++frame) {
            const std::vector<uint8_t> samples = Samples(frame);
            layout.Put({sourceSize, samples}, buffer);
            EXPECT_EQ(S_OK, source.Push(buffer, FrameStart(frame, frameRate), FrameStart(frame + 1, frameRate)));
        }
        EXPECT_EQ(S_OK, source.Finish());
    }

    VideoInfoType type;
    const BufferLayout layout;
    SourcePin source;
    SinkPin sink;
    const ComPointer<IBaseFilter> wrapper = Create<IBaseFilter>(clsidWrapper, IID_IBaseFilter, "no wrapper");
    ComPointer<IPin> in;
    ComPointer<IPin> out;
};

std::vector<uint8_t> Joined(const PicturePlanes& planes) {
    std::vector<uint8_t> all;
    for (const auto& plane : planes) all.insert(all.end(), plane.begin(), plane.end());
    return all;
}

// From a freshly loaded module, whose noise and caption start where those of the graph did.
std::vector<std::vector<uint8_t>> FramesByHand(const GraphCase& wanted, PictureSize size) {
    EXPECT_EQ(nullptr, GetModuleHandleA("WMP_CVX.dll"));
    const PluginModule plugin;
    PlayerSettings settings;
    settings.mode = wanted.mode;
    ComPointer<IMediaObject> media(plugin.Make<IMediaObject>(iidMediaObject).release());
    Player player(std::move(media), {wanted.format, sourceSize, frameRate, {}}, settings);
    EXPECT_EQ(Negotiated::playing, player.Negotiate());
    EXPECT_EQ(size, player.OutputSize());
    std::vector<std::vector<uint8_t>> frames;
    for (size_t frame = 0; frame < frameCount; ++frame) frames.push_back(Joined(player.Play(Samples(frame))));
    return frames;
}

void ExpectFramesByHand(const GraphCase& wanted) {
    std::vector<ReceivedFrame> received;
    PictureSize size;
    {
        const PluginModule plugin;
        {
            const auto factory = plugin.Factory();
            const OfferedClass offered(clsidMediaObject, *factory);
            Graph graph(wanted);
            graph.Play();
            received = graph.Result().frames;
            size = {graph.Result().picture.biWidth, graph.Result().picture.biHeight};
            EXPECT_EQ(1, graph.Result().ends);
        }
        EXPECT_EQ(S_OK, plugin.CanUnload());  // nothing of it is held any more
    }
    const auto expected = FramesByHand(wanted, size);
    ASSERT_EQ(expected.size(), received.size());
    EXPECT_NE(expected[0], expected[1]);  // equal frames would hide one that comes late
    const BufferLayout outputLayout(wanted.format, size);
    for (size_t frame = 0; frame < frameCount; ++frame) {
        std::vector<uint8_t> scratch;
        ReceivedFrame& got = received[frame];
        ASSERT_GE(got.bytes.size(), outputLayout.Bytes());
        EXPECT_EQ(FrameStart(frame, frameRate), got.start);
        EXPECT_EQ(FrameStart(frame + 1, frameRate), got.stop);
        EXPECT_TRUE(expected[frame] == Joined(outputLayout.Get(got.bytes, scratch))) << "frame " << frame;
    }
}

TEST(DirectShowGraph, GivesTheFramesThatTheObjectGivesByHand) {
    const UserRegistry registry;  // nobody's settings
    const ComApartment apartment{COINIT_MULTITHREADED};
    for (const unsigned mode : {0U, 2U}) {
        ExpectFramesByHand({SampleFormat::yv12, mediaSubtypeYv12, mode});
        ExpectFramesByHand({SampleFormat::iyuv, mediaSubtypeIyuv, mode});
        ExpectFramesByHand({SampleFormat::yuy2, mediaSubtypeYuy2, mode});
    }
}

}  // namespace
}  // namespace clarivex
