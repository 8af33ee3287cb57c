// Resources of a Windows module.
#include "platform/resources.h"

#include <cstring>
#include <memory>

namespace clarivex {
namespace {

constexpr WORD iconId = 203;
constexpr char iconType[] = "JPG";
constexpr UINT memoryKind = GMEM_MOVEABLE | GMEM_ZEROINIT | GMEM_NODISCARD;

struct MemoryFreer {
    void operator()(HGLOBAL memory) const { GlobalFree(memory); }
};
using OwnedMemory = std::unique_ptr<void, MemoryFreer>;

struct ResourceBytes {
    const void* data = nullptr;
    DWORD size = 0;
};

HRESULT FindIcon(HMODULE module, ResourceBytes& icon) {
    const HRSRC place = FindResourceA(module, MAKEINTRESOURCEA(iconId), iconType);
    if (place == nullptr) return E_HANDLE;
    icon.size = SizeofResource(module, place);
    const HGLOBAL loaded = LoadResource(module, place);
    if (icon.size == 0 || loaded == nullptr) return E_HANDLE;
    icon.data = LockResource(loaded);
    return icon.data != nullptr ? S_OK : E_POINTER;
}

HRESULT CopyToMemory(const ResourceBytes& bytes, OwnedMemory& memory) {
    memory.reset(GlobalAlloc(memoryKind, bytes.size));
    if (memory == nullptr) return E_HANDLE;
    void* target = GlobalLock(memory.get());
    if (target == nullptr) return E_POINTER;
    std::memcpy(target, bytes.data, bytes.size);
    GlobalUnlock(memory.get());
    return S_OK;
}

HRESULT MakeStream(OwnedMemory memory, DWORD size, IStream** stream) {
    const HRESULT result = CreateStreamOnHGlobal(memory.get(), TRUE, stream);
    if (FAILED(result)) {
        *stream = nullptr;
        return result;
    }
    (void)memory.release();  // the stream's from here on
    ULARGE_INTEGER length{};
    length.QuadPart = size;  // the block may be longer than asked for
    (*stream)->SetSize(length);
    return S_OK;
}

}  // namespace

HRESULT LoadIconStream(HMODULE module, IStream** stream) {
    if (stream == nullptr) return E_POINTER;
    *stream = nullptr;
    ResourceBytes icon;
    if (const HRESULT found = FindIcon(module, icon); FAILED(found)) return found;
    OwnedMemory memory;
    if (const HRESULT copied = CopyToMemory(icon, memory); FAILED(copied)) return copied;
    return MakeStream(std::move(memory), icon.size, stream);
}

}  // namespace clarivex
