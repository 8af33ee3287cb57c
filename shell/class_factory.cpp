// The class table of the module: one class so far, with a factory that is made when somebody asks for it.
#include "shell/class_factory.h"

#include <memory>

#include "shell/class_ids.h"
#include "shell/com_object.h"
#include "shell/critical_section.h"
#include "shell/media_object.h"
#include "shell/module.h"

namespace clarivex {
namespace {

using Creator = HRESULT (*)(IUnknown* outer, REFIID iid, void** out);

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
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = nullptr;
        // Any other interface would be the outer object's, which the caller has already.
        if (outer != nullptr && !IsEqualGUID(iid, iidUnknown)) {
            return CLASS_E_NOAGGREGATION;
        }
        return create(outer, iid, out);
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        ThisModule().lockCount.fetch_add(lock != FALSE ? 1 : -1);
        return S_OK;
    }

private:
    const Creator create;
};

// The module keeps its factories without being kept loaded by them.
using CachedFactory = PlainObject<CVXClassFactory, NoLock>;

struct FactoryReleaser {
    void operator()(CachedFactory* factory) const { factory->Release(); }
};

struct ClassEntry {
    const GUID& classId;
    Creator creator;
    std::unique_ptr<CachedFactory, FactoryReleaser> factory = nullptr;
};

class ClassTable {
public:
    ClassEntry* Find(REFCLSID classId) {
        for (ClassEntry& entry : entries) {
            if (IsEqualGUID(entry.classId, classId)) {
                return &entry;
            }
        }
        return nullptr;
    }

    // Null when memory is short.
    CachedFactory* FactoryOf(ClassEntry& entry) {
        const CriticalSectionGuard guard(creation);
        if (entry.factory == nullptr) {
            entry.factory.reset(new (std::nothrow) CachedFactory(entry.creator));
            if (entry.factory != nullptr) {
                entry.factory->AddRef();
            }
        }
        return entry.factory.get();
    }

private:
    CriticalSection creation;
    ClassEntry entries[1] = {{clsidMediaObject, CreateObject<CVXMediaObject>}};
};

ClassTable classTable;

}  // namespace

HRESULT GetClassObject(REFCLSID classId, REFIID riid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    ClassEntry* entry = classTable.Find(classId);
    CachedFactory* factory = entry != nullptr ? classTable.FactoryOf(*entry) : nullptr;
    return factory != nullptr ? factory->QueryInterface(riid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT CanUnloadNow() { return ThisModule().lockCount.load() == 0 ? S_OK : S_FALSE; }

}  // namespace clarivex
