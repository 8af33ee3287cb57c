// Where the media object comes from: the code linked in, or a plug-in library given by its path.
#pragma once

#include <memory>
#include <string>

#include "platform/com_pointer.h"
#include "platform/win32.h"

namespace clarivex {

/// A loaded plug-in. Objects made by it must be gone before it is.
class PluginLibrary {
public:
    /// Throws UsageError where the system's programs load no libraries, RunError when the file is no plug-in.
    explicit PluginLibrary(const std::string& path);

    /// Makes a media object through the library's own class factory. Throws RunError.
    ComPointer<IMediaObject> MakeMediaObject() const;

private:
    struct Closer {
        void operator()(void* library) const;
    };
    using GetClassObjectFunction = HRESULT(STDMETHODCALLTYPE*)(REFCLSID, REFIID, void**);

    std::unique_ptr<void, Closer> library;
    GetClassObjectFunction getClassObject = nullptr;
};

/// Makes a media object of the code linked in, through its class factory. Throws RunError.
ComPointer<IMediaObject> MakeLinkedMediaObject();

}  // namespace clarivex
