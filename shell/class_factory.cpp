// Class factories, made when somebody asks for them and kept until the module goes.
#include "shell/class_factory.h"

#include <memory>
#include <vector>

#include "shell/com_object.h"
#include "shell/critical_section.h"
#include "shell/module.h"
#include "shell/object_map.h"

namespace clarivex {
namespace {

using Creator = decltype(ObjectMapEntry::create);

class CVXClassFactory : public IClassFactory {
public:
    explicit CVXClassFactory(Creator instanceCreator) : create(instanceCreator) {}
    virtual ~CVXClassFactory() = default;

    static std::span<const InterfaceEntry<CVXClassFactory>> Interfaces() {
        static constexpr InterfaceEntry<CVXClassFactory> interfaces[] = {
            EntryFor<CVXClassFactory, IClassFactory>(iidClassFactory),
        };
        return interfaces;
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
        if (out == nullptr) return E_POINTER;
        *out = nullptr;
        // Any other interface would be the outer object's, which the caller has already.
        if (outer != nullptr && !IsEqualGUID(iid, iidUnknown)) return CLASS_E_NOAGGREGATION;
        return create(outer, iid, out);
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        ThisModule().lockCount.fetch_add(lock != FALSE ? 1 : -1);
        return S_OK;
    }

private:
    const Creator create;
};

/// The module keeps its factories without being kept loaded by them.
using CachedFactory = PlainObject<CVXClassFactory, NoLock>;

struct FactoryReleaser {
    void operator()(CachedFactory* factory) const { factory->Release(); }
};

const ObjectMapEntry* FindEntry(REFCLSID classId) {
    for (const ObjectMapEntry& entry : ObjectMap())
        if (IsEqualGUID(entry.classId, classId)) return &entry;
    return nullptr;
}

class FactoryCache {
public:
    /// Null when memory is short.
    CachedFactory* FactoryOf(const ObjectMapEntry& entry) {
        const CriticalSectionGuard guard(creation);
        OwnedFactory& factory = factories[static_cast<size_t>(&entry - ObjectMap().data())];
        if (factory == nullptr) {
            factory.reset(new (std::nothrow) CachedFactory(entry.create));
            if (factory != nullptr) factory->AddRef();
        }
        return factory.get();
    }

private:
    using OwnedFactory = std::unique_ptr<CachedFactory, FactoryReleaser>;

    CriticalSection creation;
    std::vector<OwnedFactory> factories = std::vector<OwnedFactory>(ObjectMap().size());  // in the map's order
};

FactoryCache factoryCache;

}  // namespace

HRESULT GetClassObject(REFCLSID classId, REFIID riid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    const ObjectMapEntry* entry = FindEntry(classId);
    CachedFactory* factory = entry != nullptr ? factoryCache.FactoryOf(*entry) : nullptr;
    return factory != nullptr ? factory->QueryInterface(riid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT CanUnloadNow() { return ThisModule().lockCount.load() == 0 ? S_OK : S_FALSE; }

}  // namespace clarivex
