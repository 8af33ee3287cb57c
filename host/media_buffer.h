// A block of memory in the form that media objects take: IMediaBuffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <span>

#include "platform/com_pointer.h"
#include "platform/win32.h"

namespace clarivex {

/// Counts its references without a lock: player and media object run on one thread. Starts with length 0 and all bytes 0.
class MediaBuffer final : public IMediaBuffer {
public:
    /// A buffer of `capacity` bytes, aligned to 64, whose one reference belongs to the caller. Throws std::bad_alloc.
    static ComPointer<MediaBuffer> Make(uint32_t capacity);

    /// All bytes up to the capacity, whatever the length says.
    std::span<uint8_t> Bytes() { return {memory.get(), capacity}; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    /// E_INVALIDARG above the capacity.
    HRESULT STDMETHODCALLTYPE SetLength(DWORD newLength) override;
    /// E_POINTER for null.
    HRESULT STDMETHODCALLTYPE GetMaxLength(DWORD* maxLength) override;
    /// Either argument may be null, both give E_POINTER.
    HRESULT STDMETHODCALLTYPE GetBufferAndLength(BYTE** buffer, DWORD* currentLength) override;

private:
    static constexpr std::align_val_t alignment{64};  // rows of an aligned width start on a cache line
    struct AlignedDelete {
        void operator()(uint8_t* bytes) const { ::operator delete(bytes, alignment); }
    };

    explicit MediaBuffer(uint32_t byteCount);
    ~MediaBuffer() = default;

    ULONG references = 1;
    uint32_t capacity;
    uint32_t length = 0;
    std::unique_ptr<uint8_t, AlignedDelete> memory;
};

}  // namespace clarivex
