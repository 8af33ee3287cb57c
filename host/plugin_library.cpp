// Makes media objects the way COM hosts do: class object, class factory, object.
#include "host/plugin_library.h"

#include "host/errors.h"
#include "platform/guids.h"
#include "platform/library.h"
#include "shell/class_factory.h"
#include "shell/class_ids.h"

namespace clarivex {

namespace {

ComPointer<IMediaObject> MakeFrom(HRESULT classObjectResult, void* classObject) {
    if (FAILED(classObjectResult) || !classObject)
        throw RunError("the plug-in has no class factory for its media object");
    const ComPointer<IClassFactory> factory(static_cast<IClassFactory*>(classObject));
    void* object = nullptr;
    if (FAILED(factory->CreateInstance(nullptr, iidMediaObject, &object)) || !object)
        throw RunError("the plug-in's class factory makes no media object");
    return ComPointer<IMediaObject>(static_cast<IMediaObject*>(object));
}

}  // namespace

void PluginLibrary::Closer::operator()(void* handle) const { CloseLibrary(handle); }

PluginLibrary::PluginLibrary(const std::string& path) {
    if (!CanLoadLibraries())
        throw UsageError("--plugin works in the Windows program only; leave it out to use the code linked in");
    std::string problem;
    library.reset(LoadLibraryFile(path, problem));
    if (!library) throw RunError(path + ": cannot be loaded as a plug-in: " + problem);
    getClassObject = reinterpret_cast<GetClassObjectFunction>(FindLibraryFunction(library.get(), "DllGetClassObject"));
    if (!getClassObject) throw RunError(path + ": is not a plug-in: it exports no DllGetClassObject");
}

ComPointer<IMediaObject> PluginLibrary::MakeMediaObject() const {
    void* classObject = nullptr;
    const HRESULT result = getClassObject(clsidMediaObject, iidClassFactory, &classObject);
    return MakeFrom(result, classObject);
}

ComPointer<IMediaObject> MakeLinkedMediaObject() {
    void* classObject = nullptr;
    const HRESULT result = GetClassObject(clsidMediaObject, iidClassFactory, &classObject);
    return MakeFrom(result, classObject);
}

}  // namespace clarivex
