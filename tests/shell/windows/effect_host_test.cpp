// The video effect as a host finds it: in the system's lists once its module is registered, as a filter in a graph, with pages and
// a registry key of its own; and nothing of it after it was taken out.

#include "platform/windows/effect_list.h"
#include "tests/shell/windows/filter_graph.h"
#include "tests/shell/windows/host_windows.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/effect_stream.h"

namespace clarivex {
namespace {

constexpr wchar_t effectName[] = L"Clarivex Video Effect";
constexpr REFERENCE_TIME frameTime = 400'000;
constexpr FrameSize sourceSize{64, 48};

// With the module entered in the registry, and nobody's settings.
class VideoEffectHost : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
        ASSERT_EQ(S_OK, plugin->Call("DllRegisterServer"));
    }
    void TearDown() override {
        EXPECT_EQ(S_OK, plugin->Call("DllUnregisterServer"));
        EXPECT_EQ(S_OK, plugin->Call("DllUnregisterServer")) << "a second time does no harm";
        EXPECT_EQ(S_OK, plugin->CanUnload());
        CoUninitialize();
    }

    // Null where the system's list of video effects does not have it.
    static ComPointer<IMoniker> FindMoniker() {
        const auto devices = Create<ICreateDevEnum>(CLSID_SystemDeviceEnum, IID_ICreateDevEnum);
        IEnumMoniker* list = nullptr;
        if (devices->CreateClassEnumerator(videoEffectCategory, &list, 0) != S_OK) return nullptr;
        const ComPointer<IEnumMoniker> all(list);
        for (IMoniker* next = nullptr; all->Next(1, &next, nullptr) == S_OK;) {
            ComPointer<IMoniker> moniker(next);
            void* bag = nullptr;
            VARIANT name = {};
            RequireSuccess(moniker->BindToStorage(nullptr, nullptr, IID_IPropertyBag, &bag), "no properties");
            ComPointer<IPropertyBag>(static_cast<IPropertyBag*>(bag))->Read(L"FriendlyName", &name, nullptr);
            const bool found = name.vt == VT_BSTR && std::wstring(name.bstrVal) == effectName;
            VariantClear(&name);
            if (found) return moniker;
        }
        return nullptr;
    }
    static ComPointer<IBaseFilter> BindFilter(unsigned mode) {
        void* filter = nullptr;
        RequireSuccess(FindMoniker()->BindToObject(nullptr, nullptr, IID_IBaseFilter, &filter), "no filter");
        ComPointer<IBaseFilter> bound(static_cast<IBaseFilter*>(filter));
        Ask<ICVXSettings>(bound.get(), iidCvxSettings)->put_CVXMode(mode);
        return bound;
    }

    const UserRegistry registry;
    std::unique_ptr<PluginModule> plugin = std::make_unique<PluginModule>("clarivex_video.dll");
};

// Whether the list has an effect that takes these samples.
bool IsListedFor(const GUID& subtype) {
    const DMO_PARTIAL_MEDIATYPE type = {mediaTypeVideo, subtype};
    IEnumDMO* list = nullptr;
    Require(DMOEnum(videoEffectCategory, 0, 1, &type, 1, &type, &list), "DMOEnum");
    const ComPointer<IEnumDMO> all(list);
    CLSID id = {};
    WCHAR* name = nullptr;
    bool found = false;
    while (!found && all->Next(1, &id, &name, nullptr) == S_OK) {
        found = IsEqualGUID(id, clsidVideoEffect) && std::wstring(name) == effectName;
        CoTaskMemFree(name);
    }
    return found;
}

TEST_F(VideoEffectHost, ListsTheEffectForItsFormatsUntilItIsTakenOut) {
    DMO_PARTIAL_MEDIATYPE in[9], out[9];
    ULONG ins = 0, outs = 0;
    ASSERT_EQ(S_OK, DMOGetTypes(clsidVideoEffect, 9, &ins, in, 9, &outs, out));
    ASSERT_EQ(std::pair(4UL, 4UL), std::pair(ins, outs));
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(IsEqualGUID(effectFormatsKnown[i].subtype, in[i].subtype)) << i;
        EXPECT_TRUE(IsEqualGUID(effectFormatsKnown[i].subtype, out[i].subtype)) << i;
        EXPECT_TRUE(IsListedFor(effectFormatsKnown[i].subtype)) << i;
    }
    EXPECT_FALSE(IsListedFor(mediaTypeVideo));
    EXPECT_NE(nullptr, FindMoniker());
    char model[20] = {};
    DWORD size = sizeof model;
    RegGetValueA(HKEY_CLASSES_ROOT, R"(CLSID\{FB43CBCA-4D38-4B73-BF33-3CE6E82ED950}\InprocServer32)", "ThreadingModel",
                 RRF_RT_REG_SZ, nullptr, model, &size);
    EXPECT_STREQ("Both", model);
    EXPECT_EQ(S_OK, plugin->Call("DllUnregisterServer"));
    EXPECT_FALSE(IsListedFor(mediaSubtypeNv12));
    EXPECT_EQ(nullptr, FindMoniker());
    const std::string id = "{FB43CBCA-4D38-4B73-BF33-3CE6E82ED950}", page = "{5E639B3A-1BAA-432E-A60A-470F9E0BDA6F}";
    const std::string objects = R"(DirectShow\MediaObjects\)", bare = id.substr(1, id.size() - 2);
    for (const std::string& path : {R"(CLSID\)" + id, R"(CLSID\)" + page, objects + bare,
                                    objects + R"(Categories\d990ee14-776c-4723-be46-3da2f56f10b9\)" + bare}) {
        HKEY left = nullptr;
        EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegOpenKeyA(HKEY_CLASSES_ROOT, path.c_str(), &left)) << path;
    }
}

// Frames that have come out of a graph since the last look.
std::vector<uint8_t> TakeFrames(TestGraph& graph, const PictureKind& kind, const HostRoom& room) {
    std::vector<uint8_t> samples;
    for (const std::vector<uint8_t>& frame : std::exchange(graph.sink.frames, {}))
        GuardedPicture(kind).ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t) {
            samples.push_back(frame.at(PlaceInRoom(kind, room, plane, x, y)));
        });
    return samples;
}

class GraphRun {
public:
    GraphRun(TestGraph& graph, const EffectFormat& format, const HostRoom& in, const HostRoom& out, bool enlarged)
        : graph(graph),
          effectSubtype(format.subtype),
          source({sourceSize, format.format}),
          in(in),
          out(out),
          picture(source) {
        target = {enlarged ? FrameSize{96, 72} : sourceSize, format.format};
        VideoInfo2Type inType = TypeInRoom<VideoInfo2Type>(sourceSize, in, format.subtype);
        auto outType = TypeInRoom<VideoInfo2Type>(target.size, out, format.subtype);
        const bool plain =
            out.RowSamples(target.size) == target.size.width && out.Rows(target.size) == target.size.height;
        graph.Connect(*inType.Type(), BytesOfRoom(source, widest), plain ? nullptr : outType.Type());
    }

    /// As the system's wrapper does when a sample brings a type along; Wine's does not look at it.
    void ChangeRows(const HostRoom& room) {
        const auto media = Ask<IMediaObject>(graph.Effect(), iidMediaObject);
        in = room;
        EXPECT_EQ(S_OK, media->SetInputType(0, TypeInRoom<VideoInfo2Type>(sourceSize, in, effectSubtype).Type(), 0));
    }

    std::vector<uint8_t> Play(size_t first, size_t count) {
        graph.Play(first, count, frameTime, [&](size_t frame, std::span<uint8_t> bytes) {
            picture.Draw(static_cast<int32_t>(frame));
            picture.ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t byte) {
                bytes[PlaceInRoom(source, in, plane, x, y)] = byte;
            });
        });
        return TakeFrames(graph, target, out);
    }

private:
    static constexpr HostRoom widest = {0, 0, 64, 64};

    TestGraph& graph;
    const GUID effectSubtype;
    PictureKind source, target;
    HostRoom in, out;
    GuardedPicture picture;
};

TEST_F(VideoEffectHost, PlaysTheLibrarysFramesInAGraphThroughSeeksStopsAndOtherTypes) {
    constexpr HostRoom rooms[] = {{}, {0, 0, 32, 8}, {4, 2, 12, 6}};
    size_t next = 0;
    for (const bool enlarged : {false, true}) {
        TestGraph graph(BindFilter(enlarged ? 2 : 0));
        for (const EffectFormat& format : effectFormatsKnown)
            for (const HostRoom& room : rooms) {
                GraphRun run(graph, format, room, rooms[++next % 3], enlarged);
                graph.sink.times.clear();
                graph.Run();
                auto frames = run.Play(0, 2);
                graph.Seek();
                run.ChangeRows(rooms[next % 2]);
                const auto sought = run.Play(2, 1);
                graph.Stop();
                graph.Run();
                const auto restarted = run.Play(3, 1);
                graph.End();
                graph.Stop();
                frames.insert(frames.end(), sought.begin(), sought.end());
                frames.insert(frames.end(), restarted.begin(), restarted.end());
                EXPECT_TRUE(LibraryFrames(format, sourceSize, enlarged, 4) == frames)
                    << "format " << format.format << ", run " << next << ", enlarged " << enlarged;
                ASSERT_EQ(4U, graph.sink.times.size());
                EXPECT_EQ((std::array{3 * frameTime, 4 * frameTime}), graph.sink.times[3]);
                graph.Disconnect();
            }
        EXPECT_EQ(std::pair(12, 12), std::pair(graph.sink.ends, graph.sink.flushes));
    }
}

TEST_F(VideoEffectHost, KeepsItsStateAndPageUnderAKeyOfItsOwn) {
    const auto filter = BindFilter(2), other = BindFilter(0);
    IStream* made = nullptr;
    ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &made));
    const ComPointer<IStream> stream(made);
    unsigned mode = 0;
    EXPECT_EQ(S_OK, Ask<IPersistStream>(Ask<ICVXSettings>(filter.get(), iidCvxSettings).get(), iidPersistStream)
                        ->Save(stream.get(), TRUE));
    EXPECT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));
    const auto settings = Ask<ICVXSettings>(other.get(), iidCvxSettings);
    EXPECT_EQ(S_OK, Ask<IPersistStream>(settings.get(), iidPersistStream)->Load(stream.get()));
    settings->get_CVXMode(&mode);
    EXPECT_EQ(2U, mode);
    CAUUID pages = {};
    ASSERT_EQ(S_OK, Ask<ISpecifyPropertyPages>(other.get(), iidSpecifyPropertyPages)->GetPages(&pages));
    auto page =
        plugin->Make<IPropertyPage>(iidPropertyPage, pages.pElems[0]);  // on this thread, as a host's dialogs are
    CoTaskMemFree(pages.pElems);
    IUnknown* object = settings.get();
    constexpr RECT rect = {0, 0, 400, 240};
    EXPECT_EQ(S_OK, page->SetObjects(1, &object));
    EXPECT_EQ(S_OK, page->Activate(GetDesktopWindow(), &rect, FALSE));
    EXPECT_EQ(S_OK, page->Apply());
    EXPECT_EQ(S_OK, page->Deactivate());
    page.reset();
    PluginSettings saved, players;
    LoadSettings(effectsSettings, saved);
    LoadSettings(playersSettings, players);
    EXPECT_EQ(std::pair(2U, modeAuto), std::pair(saved.mode.load(), players.mode.load()));
}

}  // namespace
}  // namespace clarivex
