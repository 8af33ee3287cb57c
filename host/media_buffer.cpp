// The player's own memory behind IMediaBuffer.
#include "host/media_buffer.h"

#include <algorithm>

#include "platform/guids.h"

namespace clarivex {

ComPointer<MediaBuffer> MediaBuffer::Make(uint32_t capacity) {
    return ComPointer<MediaBuffer>(new MediaBuffer(capacity));
}

MediaBuffer::MediaBuffer(uint32_t byteCount)
    : capacity(byteCount), memory(static_cast<uint8_t*>(::operator new(byteCount, alignment))) {
    std::fill_n(memory.get(), capacity, uint8_t{0});
}

HRESULT MediaBuffer::QueryInterface(REFIID iid, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!IsEqualGUID(iid, iidUnknown) && !IsEqualGUID(iid, iidMediaBuffer)) return E_NOINTERFACE;
    *out = static_cast<IMediaBuffer*>(this);
    AddRef();
    return S_OK;
}

ULONG MediaBuffer::AddRef() { return ++references; }

ULONG MediaBuffer::Release() {
    const ULONG left = --references;
    if (left == 0) delete this;
    return left;
}

HRESULT MediaBuffer::SetLength(DWORD newLength) {
    if (newLength > capacity) return E_INVALIDARG;
    length = newLength;
    return S_OK;
}

HRESULT MediaBuffer::GetMaxLength(DWORD* maxLength) {
    if (!maxLength) return E_POINTER;
    *maxLength = capacity;
    return S_OK;
}

HRESULT MediaBuffer::GetBufferAndLength(BYTE** buffer, DWORD* currentLength) {
    if (!buffer && !currentLength) return E_POINTER;
    if (buffer) *buffer = memory.get();
    if (currentLength) *currentLength = length;
    return S_OK;
}

}  // namespace clarivex
