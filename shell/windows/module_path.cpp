// Where a module lies on the disk.
#include "shell/windows/module_path.h"

namespace clarivex {

std::string ModulePath(HMODULE module, DWORD limit) {
    std::string path(limit, '\0');
    const DWORD length = GetModuleFileNameA(module, path.data(), limit);
    if (length >= limit)  // cut short; not every system says so itself
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
    path.resize(length < limit ? length : 0);
    return path;
}

}  // namespace clarivex
