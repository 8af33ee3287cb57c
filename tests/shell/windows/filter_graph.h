// A DirectShow graph for tests: a source and a sink of one pin each, and between them a filter that holds a media object.
#pragma once

#include <dshow.h>

#include <dmodshow.h>

#include <array>
#include <cstring>
#include <thread>
#include <vector>

#include "platform/com_pointer.h"
#include "tests/support/counted_fake.h"
#include "tests/support/test.h"
#include "tests/support/test_object.h"

namespace clarivex {

/// S_FALSE and other kinds of success pass.
inline void RequireSuccess(HRESULT result, const char* what) { Require(FAILED(result) ? result : S_OK, what); }

template <class Interface>
ComPointer<Interface> Create(const GUID& classId, const GUID& iid) {
    void* made = nullptr;
    RequireSuccess(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iid, &made), "a class is missing");
    return ComPointer<Interface>(static_cast<Interface*>(made));
}

/// A filter and its only pin, at one end of a graph. A sink takes every type and keeps every frame.
class EndFilter final : public CountedFake<IBaseFilter>, public IPin, public IMemInputPin {
public:
    explicit EndFilter(PIN_DIRECTION side) : CountedFake(IID_IBaseFilter), direction(side) {}

    BITMAPINFOHEADER picture = {};             ///< of the type agreed on
    std::vector<std::vector<uint8_t>> frames;  ///< whole buffers, whatever length the samples tell
    std::vector<std::array<REFERENCE_TIME, 2>> times;
    int ends = 0, flushes = 0;

    IPin* Pin() { return this; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        const bool isPin = IsEqualGUID(iid, IID_IPin), isInput = IsEqualGUID(iid, IID_IMemInputPin);
        if (!isPin && !isInput) return CountedFake::QueryInterface(iid, out);
        AddRef();
        *out = isPin ? static_cast<void*>(static_cast<IPin*>(this)) : static_cast<IMemInputPin*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return CountedFake::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return CountedFake::Release(); }

    // IBaseFilter.
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stop() override { return Become(State_Stopped); }
    HRESULT STDMETHODCALLTYPE Pause() override { return Become(State_Paused); }
    HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME) override { return Become(State_Running); }
    HRESULT STDMETHODCALLTYPE GetState(DWORD, FILTER_STATE* told) override {
        *told = state;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** clock) override {
        *clock = nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** all) override {
        *all = new OnePin(*this);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE FindPin(LPCWSTR, IPin**) override { return VFW_E_NOT_FOUND; }
    HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* info) override {
        *info = {L"End", graph};
        if (graph != nullptr) graph->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph* joined, LPCWSTR) override {
        graph = joined;  // which holds the filter, not the other way round
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE QueryVendorInfo(LPWSTR*) override { return E_NOTIMPL; }

    // IPin.
    HRESULT STDMETHODCALLTYPE Connect(IPin* other, const AM_MEDIA_TYPE* type) override {
        const HRESULT result = other->ReceiveConnection(this, type);
        if (SUCCEEDED(result)) peer = ReferenceTo(other);
        return result;
    }
    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin* other, const AM_MEDIA_TYPE* type) override {
        if (type->cbFormat < sizeof(VIDEOINFOHEADER)) return VFW_E_TYPE_NOT_ACCEPTED;
        const bool second = IsEqualGUID(type->formattype, formatVideoInfo2);
        std::memcpy(
            &picture,
            type->pbFormat + (second ? offsetof(VIDEOINFOHEADER2, bmiHeader) : offsetof(VIDEOINFOHEADER, bmiHeader)),
            sizeof picture);
        peer = ReferenceTo(other);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Disconnect() override {
        peer.reset();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ConnectedTo(IPin** other) override {
        *other = ReferenceTo(peer.get()).release();
        return peer != nullptr ? S_OK : VFW_E_NOT_CONNECTED;
    }
    HRESULT STDMETHODCALLTYPE ConnectionMediaType(AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO* info) override {
        *info = {this, direction, L"Pin"};
        AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE QueryDirection(PIN_DIRECTION* side) override {
        *side = direction;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE QueryId(LPWSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryAccept(const AM_MEDIA_TYPE*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryInternalConnections(IPin**, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EndOfStream() override {
        ++ends;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE BeginFlush() override {
        ++flushes;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EndFlush() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return S_OK; }

    // IMemInputPin.
    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator**) override { return VFW_E_NO_ALLOCATOR; }
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator*, BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override {
        BYTE* data = nullptr;
        if (const HRESULT got = sample->GetPointer(&data); FAILED(got)) return got;
        frames.emplace_back(data, data + sample->GetSize());
        auto& [start, stop] = times.emplace_back();
        sample->GetTime(&start, &stop);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ReceiveMultiple(IMediaSample**, LONG, LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() override { return S_FALSE; }

private:
    class OnePin final : public IEnumPins {
    public:
        explicit OnePin(EndFilter& owner) : filter(owner) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
        ULONG STDMETHODCALLTYPE Release() override {
            const ULONG left = --references;
            if (left == 0) delete this;
            return left;
        }
        HRESULT STDMETHODCALLTYPE Next(ULONG count, IPin** pins, ULONG* fetched) override {
            const bool gives = count > 0 && !given;
            if (gives) pins[0] = ReferenceTo(filter.Pin()).release();
            if (fetched != nullptr) *fetched = gives ? 1 : 0;
            given = true;
            return gives && count == 1 ? S_OK : S_FALSE;
        }
        HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reset() override {
            given = false;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE Clone(IEnumPins**) override { return E_NOTIMPL; }

    private:
        virtual ~OnePin() = default;

        EndFilter& filter;
        ULONG references = 1;
        bool given = false;
    };

    HRESULT Become(FILTER_STATE next) {
        state = next;
        return S_OK;
    }

    const PIN_DIRECTION direction;
    FILTER_STATE state = State_Stopped;
    IFilterGraph* graph = nullptr;
    ComPointer<IPin> peer;
};

/// Source, effect and sink in a graph of the system's.
class TestGraph {
public:
    explicit TestGraph(ComPointer<IBaseFilter> between) : effect(std::move(between)) {
        for (IBaseFilter* filter : {static_cast<IBaseFilter*>(&source), effect.get(), static_cast<IBaseFilter*>(&sink)})
            RequireSuccess(graph->AddFilter(filter, nullptr), "the graph does not take a filter");
        IPin* pins[2] = {};
        ULONG found = 0;
        IEnumPins* all = nullptr;
        RequireSuccess(effect->EnumPins(&all), "EnumPins");
        all->Next(2, pins, &found);
        all->Release();
        in.reset(pins[0]);
        out.reset(pins[1]);
        Require(found == 2 ? S_OK : E_FAIL, "the effect lacks a pin");
    }
    ~TestGraph() {
        Disconnect();
        for (IBaseFilter* filter : {static_cast<IBaseFilter*>(&source), static_cast<IBaseFilter*>(&sink)})
            graph->RemoveFilter(filter);
        graph->RemoveFilter(effect.get());
        EXPECT_EQ(std::pair(1, 1), std::pair(source.references.load(), sink.references.load()));
    }

    IBaseFilter* Effect() const { return effect.get(); }

    /// outType  null for what the effect offers
    void Connect(const DMO_MEDIA_TYPE& inType, size_t inBytes, const DMO_MEDIA_TYPE* outType) {
        bytes = inBytes;
        const auto* asked = reinterpret_cast<const AM_MEDIA_TYPE*>(&inType);
        RequireSuccess(graph->ConnectDirect(source.Pin(), in.get(), asked), "the input is not connected");
        input = Ask<IMemInputPin>(in.get(), IID_IMemInputPin);
        allocator = Create<IMemAllocator>(CLSID_MemoryAllocator, IID_IMemAllocator);
        ALLOCATOR_PROPERTIES wishes = {2, static_cast<LONG>(bytes), 1, 0}, actual = {};
        RequireSuccess(allocator->SetProperties(&wishes, &actual), "no buffers of this size");
        RequireSuccess(input->NotifyAllocator(allocator.get(), FALSE), "the input refuses the buffers");
        RequireSuccess(allocator->Commit(), "no memory");
        const auto* wanted = reinterpret_cast<const AM_MEDIA_TYPE*>(outType);
        RequireSuccess(graph->ConnectDirect(out.get(), sink.Pin(), wanted), "the output is not connected");
    }
    void Disconnect() {
        for (IPin* pin : {source.Pin(), in.get(), out.get(), sink.Pin()}) graph->Disconnect(pin);
    }

    void Run() { RequireSuccess(Ask<IMediaControl>(graph.get(), IID_IMediaControl)->Run(), "the graph does not run"); }
    void Stop() {
        RequireSuccess(Ask<IMediaControl>(graph.get(), IID_IMediaControl)->Stop(), "the graph does not stop");
    }

    /// On a thread of its own, as a decoder's would be. fill(frame, bytes) draws each of the frames.
    template <class Fill>
    void Play(size_t first, size_t count, REFERENCE_TIME frameTime, Fill fill) {
        std::thread([&] {
            for (size_t frame = first; frame < first + count; ++frame)
                EXPECT_EQ(S_OK, Push(frame, frameTime, fill)) << "frame " << frame;
        }).join();
    }
    void Seek() {
        EXPECT_EQ(S_OK, in->BeginFlush());
        EXPECT_EQ(S_OK, in->EndFlush());
        EXPECT_EQ(S_OK, in->NewSegment(0, 1 << 30, 1.0));
    }
    void End() { EXPECT_EQ(S_OK, in->EndOfStream()); }

    EndFilter source{PINDIR_OUTPUT}, sink{PINDIR_INPUT};

private:
    /// Sends one frame down the graph and returns when it has passed.
    template <class Fill>
    HRESULT Push(size_t frame, REFERENCE_TIME frameTime, Fill fill) {
        IMediaSample* made = nullptr;
        RequireSuccess(allocator->GetBuffer(&made, nullptr, nullptr, 0), "no buffer");
        const ComPointer<IMediaSample> sample(made);
        BYTE* data = nullptr;
        sample->GetPointer(&data);
        fill(frame, std::span(data, bytes));
        sample->SetActualDataLength(static_cast<LONG>(bytes));
        REFERENCE_TIME start = static_cast<REFERENCE_TIME>(frame) * frameTime, stop = start + frameTime;
        sample->SetTime(&start, &stop);
        return input->Receive(sample.get());
    }

    size_t bytes = 0;
    const ComPointer<IGraphBuilder> graph = Create<IGraphBuilder>(CLSID_FilterGraph, IID_IGraphBuilder);
    const ComPointer<IBaseFilter> effect;
    ComPointer<IMemAllocator> allocator;
    ComPointer<IPin> in, out;
    Owned<IMemInputPin> input;
};

}  // namespace clarivex
