// Programs of this system carry no resources: callers hear what they would hear of a module without the icon.
#include "platform/resources.h"

namespace clarivex {

HRESULT LoadIconStream(HMODULE, IStream** stream) {
    if (stream == nullptr) return E_POINTER;
    *stream = nullptr;
    return E_HANDLE;
}

}  // namespace clarivex
