// Memory, media types and wide text as the system's libraries have them.
#include "platform/posix/com.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "platform/posix/media.h"

void* CoTaskMemAlloc(size_t size) { return std::malloc(size); }

void CoTaskMemFree(void* memory) { std::free(memory); }

int _wcsicmp(const wchar_t* a, const wchar_t* b) { return wcscasecmp(a, b); }

HRESULT MoCopyMediaType(DMO_MEDIA_TYPE* target, const DMO_MEDIA_TYPE* source) {
    if (target == nullptr || source == nullptr) return E_POINTER;
    *target = *source;
    target->cbFormat = 0;
    target->pbFormat = nullptr;
    if (target->pUnk != nullptr) target->pUnk->AddRef();
    if (source->cbFormat == 0) return S_OK;
    target->pbFormat = static_cast<BYTE*>(CoTaskMemAlloc(source->cbFormat));
    if (target->pbFormat == nullptr) return E_OUTOFMEMORY;
    target->cbFormat = source->cbFormat;
    std::memcpy(target->pbFormat, source->pbFormat, source->cbFormat);
    return S_OK;
}

HRESULT MoFreeMediaType(DMO_MEDIA_TYPE* type) {
    if (type == nullptr) return E_POINTER;
    if (type->pUnk != nullptr) {
        type->pUnk->Release();
        type->pUnk = nullptr;
    }
    CoTaskMemFree(type->pbFormat);
    type->pbFormat = nullptr;
    type->cbFormat = 0;
    return S_OK;
}
