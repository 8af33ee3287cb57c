// The two ends of a DirectShow graph for tests: a source that pushes the test's frames and a sink that keeps what comes
// out, each with one pin. They do what a graph asks of them and no more.
#pragma once

#include <dshow.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "platform/com_pointer.h"
#include "platform/win32.h"
#include "shell/com_object.h"
#include "tests/support/test_object.h"

namespace clarivex {

/// Ends the test when a call of the graph fails; S_FALSE and other kinds of success pass.
inline void RequireSuccess(HRESULT result, const char* what) {
    if (FAILED(result)) throw std::runtime_error(what);
}

template <class Interface>
ComPointer<Interface> Create(const GUID& classId, const GUID& iid, const char* what) {
    void* made = nullptr;
    RequireSuccess(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iid, &made), what);
    return ComPointer<Interface>(static_cast<Interface*>(made));
}

/// Hands a filter's pin out.
class OnePin : public IEnumPins {
public:
    explicit OnePin(IPin* only) : pin(ReferenceTo(only)) {}
    virtual ~OnePin() = default;
    static std::span<const InterfaceEntry<OnePin>> Interfaces() {
        static const InterfaceEntry<OnePin> interfaces[] = {EntryFor<OnePin, IEnumPins>(IID_IEnumPins)};
        return interfaces;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IPin** pins, ULONG* fetched) override {
        const bool gives = count > 0 && !given;
        if (gives) *pins = ReferenceTo(pin.get()).release();
        if (fetched != nullptr) *fetched = gives ? 1 : 0;
        given = given || gives;
        return gives && count == 1 ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override {
        given = false;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumPins**) override { return E_NOTIMPL; }

private:
    const ComPointer<IPin> pin;
    bool given = false;
};

/// A filter's pin, counted with the filter.
class GraphPin : public IPin {
public:
    GraphPin(IBaseFilter* owner, PIN_DIRECTION side) : filter(owner), direction(side) {}
    virtual ~GraphPin() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        const bool known = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IPin);
        *out = known ? static_cast<IPin*>(this) : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return filter->AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return filter->Release(); }

    HRESULT STDMETHODCALLTYPE Connect(IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Disconnect() override {
        const bool connected = peer != nullptr;
        peer.reset();
        return connected ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE ConnectedTo(IPin** pin) override {
        *pin = ReferenceTo(peer.get()).release();
        return *pin != nullptr ? S_OK : VFW_E_NOT_CONNECTED;
    }
    HRESULT STDMETHODCALLTYPE ConnectionMediaType(AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO* info) override {
        *info = {ReferenceTo(filter).release(), direction, L"pin"};
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
    HRESULT STDMETHODCALLTYPE EndOfStream() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE BeginFlush() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EndFlush() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return S_OK; }

protected:
    ComPointer<IPin> peer;

private:
    IBaseFilter* const filter;
    const PIN_DIRECTION direction;
};

/// A filter with one pin. Its state is what the graph set last.
template <class Pin>
class OnePinFilter : public IBaseFilter {
public:
    virtual ~OnePinFilter() = default;
    static std::span<const InterfaceEntry<OnePinFilter>> Interfaces() {
        static const InterfaceEntry<OnePinFilter> interfaces[] = {
            EntryFor<OnePinFilter, IBaseFilter>(IID_IBaseFilter),
            EntryFor<OnePinFilter, IMediaFilter>(IID_IMediaFilter),
            EntryFor<OnePinFilter, IPersist>(IID_IPersist),
        };
        return interfaces;
    }

    Pin pin{this};

    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* id) override {
        *id = {};
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Stop() override { return Enter(State_Stopped); }
    HRESULT STDMETHODCALLTYPE Pause() override { return Enter(State_Paused); }
    HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME) override { return Enter(State_Running); }
    HRESULT STDMETHODCALLTYPE GetState(DWORD, FILTER_STATE* now) override {
        *now = state;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock* newClock) override {
        clock = ReferenceTo(newClock);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** out) override {
        *out = ReferenceTo(clock.get()).release();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** pins) override {
        auto* made = new PlainObject<OnePin, NoLock>(&pin);
        made->AddRef();
        *pins = made;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE FindPin(LPCWSTR, IPin**) override { return VFW_E_NOT_FOUND; }
    HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* info) override {
        *info = {};
        name.copy(info->achName, std::size(info->achName) - 1);
        info->pGraph = ReferenceTo(graph).release();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph* newGraph, LPCWSTR newName) override {
        graph = newGraph;  // not counted: the graph holds its filters
        name = newName != nullptr ? newName : L"";
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE QueryVendorInfo(LPWSTR*) override { return E_NOTIMPL; }

private:
    HRESULT Enter(FILTER_STATE next) {
        state = next;
        pin.OnState(next);
        return S_OK;
    }

    std::atomic<FILTER_STATE> state = State_Stopped;
    ComPointer<IReferenceClock> clock;
    IFilterGraph* graph = nullptr;
    std::wstring name;
};

/// Pushes frames of one media type.
class SourcePin : public GraphPin {
public:
    explicit SourcePin(IBaseFilter* owner) : GraphPin(owner, PINDIR_OUTPUT) {}

    AM_MEDIA_TYPE type = {};  ///< the frames' type, to be set before the pin is connected
    LONG frameBytes = 0;      ///< and how large their buffers are

    HRESULT STDMETHODCALLTYPE Connect(IPin* receiver, const AM_MEDIA_TYPE*) override {
        if (const HRESULT taken = receiver->ReceiveConnection(this, &type); FAILED(taken)) return taken;
        peer = ReferenceTo(receiver);
        input = ComPointer<IMemInputPin>(Ask<IMemInputPin>(receiver, IID_IMemInputPin).release());
        return ChooseAllocator();
    }
    HRESULT STDMETHODCALLTYPE Disconnect() override {
        allocator.reset();
        input.reset();
        return GraphPin::Disconnect();
    }
    void OnState(FILTER_STATE state) {
        if (allocator != nullptr) state == State_Stopped ? allocator->Decommit() : allocator->Commit();
    }

    /// Sends one frame down the graph and returns when it has passed.
    HRESULT Push(std::span<const uint8_t> bytes, REFERENCE_TIME start, REFERENCE_TIME stop) {
        IMediaSample* made = nullptr;
        RequireSuccess(allocator->GetBuffer(&made, nullptr, nullptr, 0), "no buffer");
        const ComPointer<IMediaSample> sample(made);
        BYTE* data = nullptr;
        RequireSuccess(sample->GetPointer(&data), "no memory in the buffer");
        std::memcpy(data, bytes.data(), bytes.size());
        sample->SetActualDataLength(static_cast<LONG>(bytes.size()));
        sample->SetTime(&start, &stop);
        sample->SetSyncPoint(TRUE);
        return input->Receive(sample.get());
    }
    HRESULT Finish() { return peer->EndOfStream(); }

private:
    HRESULT ChooseAllocator() {
        allocator = Create<IMemAllocator>(CLSID_MemoryAllocator, IID_IMemAllocator, "no allocator");
        ALLOCATOR_PROPERTIES wanted = {2, frameBytes, 1, 0};
        ALLOCATOR_PROPERTIES actual = {};
        if (const HRESULT set = allocator->SetProperties(&wanted, &actual); FAILED(set)) return set;
        return input->NotifyAllocator(allocator.get(), FALSE);
    }

    ComPointer<IMemInputPin> input;
    ComPointer<IMemAllocator> allocator;
};

/// What arrived of one frame: the whole buffer, whatever length the sample tells.
struct ReceivedFrame {
    std::vector<uint8_t> bytes;
    LONG toldLength = 0;
    REFERENCE_TIME start = 0;
    REFERENCE_TIME stop = 0;
};

/// Takes every type and keeps every frame.
class SinkPin : public GraphPin, public IMemInputPin {
public:
    explicit SinkPin(IBaseFilter* owner) : GraphPin(owner, PINDIR_INPUT) {}

    BITMAPINFOHEADER picture = {};  ///< of the type agreed on
    std::vector<ReceivedFrame> frames;
    int ends = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!IsEqualGUID(iid, IID_IMemInputPin)) return GraphPin::QueryInterface(iid, out);
        AddRef();
        *out = static_cast<IMemInputPin*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return GraphPin::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return GraphPin::Release(); }

    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) override {
        if (type->cbFormat < sizeof(VIDEOINFOHEADER)) return VFW_E_TYPE_NOT_ACCEPTED;
        picture = reinterpret_cast<const VIDEOINFOHEADER*>(type->pbFormat)->bmiHeader;
        peer = ReferenceTo(connector);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EndOfStream() override {
        ++ends;
        return S_OK;
    }
    void OnState(FILTER_STATE) {}

    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator**) override { return VFW_E_NO_ALLOCATOR; }
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator*, BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override {
        ReceivedFrame frame;
        BYTE* data = nullptr;
        if (const HRESULT got = sample->GetPointer(&data); FAILED(got)) return got;
        frame.bytes.assign(data, data + sample->GetSize());
        frame.toldLength = sample->GetActualDataLength();
        sample->GetTime(&frame.start, &frame.stop);
        frames.push_back(std::move(frame));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ReceiveMultiple(IMediaSample** samples, LONG count, LONG* taken) override {
        for (*taken = 0; *taken < count; ++*taken) Receive(samples[*taken]);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() override { return S_FALSE; }
};

using GraphSource = PlainObject<OnePinFilter<SourcePin>, NoLock>;
using GraphSink = PlainObject<OnePinFilter<SinkPin>, NoLock>;

}  // namespace clarivex
