// Buffers and outer objects that count what is done to them, for tests of the media object.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>

#include "tests/support/counted_fake.h"

namespace clarivex {

/// A media buffer whose memory ends where it says: a block of its own, or the test's, such as guarded pages.
class FakeBuffer : public CountedFake<IMediaBuffer> {
public:
    /// Takes the memory with what it holds.
    explicit FakeBuffer(std::span<uint8_t> memory)
        : CountedFake(iidMediaBuffer),
          toldCapacity(static_cast<DWORD>(memory.size())),
          length(static_cast<DWORD>(memory.size())),
          bytes(memory) {}
    FakeBuffer(std::span<uint8_t> memory, uint8_t fill) : FakeBuffer(memory) { std::ranges::fill(bytes, fill); }
    explicit FakeBuffer(size_t capacity, uint8_t fill = 0)
        : FakeBuffer(std::span(new uint8_t[capacity], capacity), fill) {
        ownMemory.reset(bytes.data());
    }

    // What the test sets.
    HRESULT contentResult = S_OK;   ///< of GetBufferAndLength
    HRESULT capacityResult = S_OK;  ///< of GetMaxLength
    DWORD toldCapacity;             ///< the real one unless the test says otherwise
    DWORD length;                   ///< starts at the capacity
    bool givesNull = false;         ///< GetBufferAndLength succeeds with a null pointer

    // What the test looks at.
    int lengthsSet = 0;

    std::span<uint8_t> Bytes() const { return bytes; }
    bool HoldsOnly(uint8_t value) const {
        return std::ranges::all_of(bytes, [value](uint8_t byte) { return byte == value; });
    }

    HRESULT STDMETHODCALLTYPE SetLength(DWORD newLength) override {
        ++lengthsSet;
        length = newLength;
        return newLength <= toldCapacity ? S_OK : E_INVALIDARG;
    }
    HRESULT STDMETHODCALLTYPE GetMaxLength(DWORD* maxLength) override {
        if (capacityResult == S_OK) *maxLength = toldCapacity;
        return capacityResult;
    }
    HRESULT STDMETHODCALLTYPE GetBufferAndLength(BYTE** buffer, DWORD* currentLength) override {
        if (SUCCEEDED(contentResult)) {
            *buffer = givesNull ? nullptr : Bytes().data();
            *currentLength = length;
        }
        return contentResult;
    }

private:
    std::span<uint8_t> bytes;
    std::unique_ptr<uint8_t[]> ownMemory;
};

/// An object that contains another one: what it does not know itself it asks of `inner`.
class FakeOuter final : public IUnknown {
public:
    IUnknown* inner = nullptr;  ///< the private handle of what is contained, counted by the test
    int references = 1;
    int questions = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        ++questions;
        if (IsEqualGUID(iid, iidUnknown)) {
            ++references;
            *out = static_cast<IUnknown*>(this);
            return S_OK;
        }
        return inner->QueryInterface(iid, out);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
};

}  // namespace clarivex
