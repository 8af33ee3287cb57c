// The plug-in between two DirectShow pins, inside the system's own wrapper for media objects: what comes out of the
// graph is what the object gives when it is driven by hand.

#include "host/buffer_layout.h"
#include "host/player.h"
#include "shell/settings.h"
#include "tests/shell/windows/filter_graph.h"
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

struct GraphCase {
    SampleFormat format;
    GUID subtype;
    unsigned mode;
};

// The plug-in in the system's own wrapper.
ComPointer<IBaseFilter> WrappedPlugin(unsigned mode) {
    auto wrapper = Create<IBaseFilter>(clsidWrapper, IID_IBaseFilter);
    RequireSuccess(Ask<IDMOWrapperFilter>(wrapper.get(), iidWrapper)->Init(clsidMediaObject, videoEffects), "Init");
    Ask<ICVXSettings>(wrapper.get(), iidCvxSettings)->put_CVXMode(mode);
    return wrapper;
}

void PlayThrough(TestGraph& graph, const GraphCase& wanted) {
    const BufferLayout layout(wanted.format, sourceSize);
    VideoInfoType type(sourceSize.width, sourceSize.height, wanted.subtype);
    type.Target() = {0, 0, sourceSize.width, sourceSize.height};  // as a decoder's types have it
    type.header.AvgTimePerFrame = FrameStart(1, frameRate);
    graph.Connect(*type.Type(), layout.Bytes(), nullptr);
    graph.Run();
    const auto frames = SourceFrames();
    graph.Play(0, frameCount, FrameStart(1, frameRate), [&](size_t frame, std::span<uint8_t> buffer) {
        layout.Put({sourceSize, frames[frame]}, buffer);
    });
    graph.End();
    graph.Stop();
}

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
    std::vector<Bytes> frames;
    std::vector<std::array<REFERENCE_TIME, 2>> times;
    PictureSize picture;
    {
        const PluginModule plugin;
        DWORD offer = 0;  // of the class to this process
        Require(CoRegisterClassObject(clsidMediaObject, plugin.Factory().get(), CLSCTX_INPROC_SERVER,
                                      REGCLS_MULTIPLEUSE, &offer),
                "CoRegisterClassObject");
        {
            TestGraph graph(WrappedPlugin(wanted.mode));
            PlayThrough(graph, wanted);
            EXPECT_EQ(1, graph.sink.ends);
            frames = graph.sink.frames;
            times = graph.sink.times;
            picture = {graph.sink.picture.biWidth, graph.sink.picture.biHeight};
        }
        CoRevokeClassObject(offer);
        EXPECT_EQ(S_OK, plugin.CanUnload());  // nothing of it is held any more
    }
    const BufferLayout layout(wanted.format, picture);
    const auto expected = FramesByHand(wanted, layout.Size());
    ASSERT_EQ(expected.size(), frames.size());
    EXPECT_NE(expected[0], expected[1]);  // equal frames would hide one that comes late
    for (size_t frame = 0; frame < frameCount; ++frame) {
        Bytes scratch;
        ASSERT_GE(frames[frame].size(), layout.Bytes());
        EXPECT_EQ(FrameStart(frame, frameRate), times[frame][0]);
        EXPECT_EQ(FrameStart(frame + 1, frameRate), times[frame][1]);
        EXPECT_TRUE(expected[frame] == Joined(layout.Get(frames[frame], scratch))) << "frame " << frame;
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
