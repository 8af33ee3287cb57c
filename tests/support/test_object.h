// A media object for a test, made as a host makes it, with all its interfaces at hand.
#pragma once

#include <memory>
#include <stdexcept>

#include "platform/guids.h"
#include "platform/player.h"
#include "shell/class_factory.h"
#include "shell/class_ids.h"
#include "shell/settings.h"

namespace clarivex {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

template <class Interface>
using Owned = std::unique_ptr<Interface, Releaser>;

/// Another interface of an object, null where it has none.
template <class Interface>
Owned<Interface> Ask(IUnknown* object, const GUID& iid) {
    void* found = nullptr;
    object->QueryInterface(iid, &found);
    return Owned<Interface>(static_cast<Interface*>(found));
}

/// Ends the test that cannot go on without.
inline void Require(HRESULT result, const char* what) {
    if (result != S_OK) throw std::runtime_error(what);
}

inline Owned<IClassFactory> MediaObjectFactory(const GUID& classId = clsidMediaObject) {
    void* factory = nullptr;
    Require(GetClassObject(classId, iidClassFactory, &factory), "no class factory");
    return Owned<IClassFactory>(static_cast<IClassFactory*>(factory));
}

/// An interface of a new object, plain or as a part of `outer`.
template <class Interface>
Owned<Interface> MakeObject(const GUID& iid, IUnknown* outer = nullptr, const GUID& classId = clsidMediaObject) {
    void* object = nullptr;
    Require(MediaObjectFactory(classId)->CreateInstance(outer, iid, &object), "no media object");
    return Owned<Interface>(static_cast<Interface*>(object));
}

/// The player's object, or one that is given; then what its class has not is null.
struct TestObject {
    Owned<IMediaObject> media = MakeObject<IMediaObject>(iidMediaObject);
    Owned<ICVXSettings> settings = Ask<ICVXSettings>(media.get(), iidCvxSettings);
    Owned<IWMPPluginEnable> player = Ask<IWMPPluginEnable>(media.get(), iidWmpPluginEnable);
    Owned<ISpecifyPropertyPages> pages = Ask<ISpecifyPropertyPages>(media.get(), iidSpecifyPropertyPages);
    Owned<IPropertyBag> bag = Ask<IPropertyBag>(media.get(), iidPropertyBag);

    static TestObject OfClass(const GUID& classId) {
        return {MakeObject<IMediaObject>(iidMediaObject, nullptr, classId)};
    }

    bool ScalingActive() const {
        int active = -1;
        settings->get_ScalingActive(&active);
        return active == 1;
    }
};

}  // namespace clarivex
