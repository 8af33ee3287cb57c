// The neighbours of a DirectShow filter for tests: a pin that pushes the test's frames and one that keeps what comes out.
// They do what a filter's own pins ask of them and no more.
#pragma once

#include <dshow.h>

#include <cstdint>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

#include "platform/com_pointer.h"
#include "tests/support/counted_fake.h"
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

/// A pin that belongs to no filter.
class GraphPin : public CountedFake<IPin> {
public:
    explicit GraphPin(PIN_DIRECTION side) : CountedFake(IID_IPin), direction(side) {}

    HRESULT STDMETHODCALLTYPE Connect(IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Disconnect() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ConnectedTo(IPin**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ConnectionMediaType(AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO*) override { return E_NOTIMPL; }
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

private:
    const PIN_DIRECTION direction;
};

/// Pushes frames of one media type into the pin that it was connected to.
class SourcePin final : public GraphPin {
public:
    SourcePin() : GraphPin(PINDIR_OUTPUT) {}

    void ConnectTo(IPin& receiver, const AM_MEDIA_TYPE& type, size_t frameBytes) {
        RequireSuccess(receiver.ReceiveConnection(this, &type), "the input is not connected");
        peer = ReferenceTo(&receiver);
        input = ComPointer<IMemInputPin>(Ask<IMemInputPin>(&receiver, IID_IMemInputPin).release());
        ALLOCATOR_PROPERTIES wanted = {2, static_cast<LONG>(frameBytes), 1, 0};
        ALLOCATOR_PROPERTIES actual = {};
        RequireSuccess(allocator->SetProperties(&wanted, &actual), "no buffers of this size");
        RequireSuccess(input->NotifyAllocator(allocator.get(), FALSE), "the input refuses the buffers");
        RequireSuccess(allocator->Commit(), "no memory");
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
    const ComPointer<IMemAllocator> allocator =
        Create<IMemAllocator>(CLSID_MemoryAllocator, IID_IMemAllocator, "no allocator");
    ComPointer<IPin> peer;
    ComPointer<IMemInputPin> input;
};

/// What arrived of one frame: the whole buffer, whatever length the sample tells.
struct ReceivedFrame {
    std::vector<uint8_t> bytes;
    REFERENCE_TIME start = 0;
    REFERENCE_TIME stop = 0;
};

/// Takes every type and keeps every frame.
class SinkPin final : public GraphPin, public IMemInputPin {
public:
    SinkPin() : GraphPin(PINDIR_INPUT) {}

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

    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin*, const AM_MEDIA_TYPE* type) override {
        if (type->cbFormat < sizeof(VIDEOINFOHEADER)) return VFW_E_TYPE_NOT_ACCEPTED;
        picture = reinterpret_cast<const VIDEOINFOHEADER*>(type->pbFormat)->bmiHeader;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EndOfStream() override {
        ++ends;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator**) override { return VFW_E_NO_ALLOCATOR; }
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator*, BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override {
        ReceivedFrame frame;
        BYTE* data = nullptr;
        if (const HRESULT got = sample->GetPointer(&data); FAILED(got)) return got;
        frame.bytes.assign(data, data + sample->GetSize());
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

}  // namespace clarivex
