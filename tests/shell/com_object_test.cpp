// From a class identifier to an object; identity, interfaces, counting and aggregation of objects in both shapes.
#include "shell/com_object.h"

#include "shell/class_factory.h"
#include "shell/media_object.h"
#include "shell/module.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test.h"
#include "tests/support/test_object.h"

namespace clarivex {
namespace {

/// A class and its interfaces, the identity first.
struct KnownClass {
    GUID classId;
    std::vector<GUID> interfaces;
};
const KnownClass bothClasses[] = {
    {clsidMediaObject, {iidCvxSettings, iidMediaObject, iidWmpPluginEnable, iidSpecifyPropertyPages, iidPropertyBag}},
    {clsidVideoEffect, {iidCvxSettings, iidMediaObject, iidSpecifyPropertyPages, iidPersistStream, iidPersist}}};

int32_t ModuleLocks() { return ThisModule().lockCount; }

ULONG ReferencesTo(IUnknown* object) {
    const ULONG added = object->AddRef();
    const ULONG left = object->Release();
    EXPECT_EQ(left + 1, added);
    return left;
}

/// Refused with this code, the pointer cleared.
template <class Get>
void ExpectRefusal(HRESULT expected, Get get) {
    void* out = &out;
    EXPECT_EQ(expected, get(&out));
    EXPECT_EQ(nullptr, out);
}

TEST(PlainShape, UnknownClassesInterfacesAndMissingPointersAreRefused) {
    FakeOuter outer;
    const auto factory = MediaObjectFactory();
    const auto object = MakeObject<IUnknown>(iidUnknown);
    EXPECT_EQ(factory, MediaObjectFactory()) << "there is one";
    EXPECT_EQ(factory.get(), Ask<IClassFactory>(factory.get(), iidUnknown).get());
    for (const GUID& iid : {iidMediaObject, iidStream, iidMediaBuffer, noGuid}) {
        ExpectRefusal(CLASS_E_CLASSNOTAVAILABLE, [&](void** out) { return GetClassObject(iid, iidClassFactory, out); });
        ExpectRefusal(E_NOINTERFACE, [&](void** out) { return GetClassObject(clsidMediaObject, iid, out); });
        ExpectRefusal(E_NOINTERFACE, [&](void** out) { return factory->QueryInterface(iid, out); });
        if (!IsEqualGUID(iid, iidMediaObject))
            ExpectRefusal(E_NOINTERFACE, [&](void** out) { return object->QueryInterface(iid, out); });
    }
    ExpectRefusal(CLASS_E_NOAGGREGATION,
                  [&](void** out) { return factory->CreateInstance(&outer, iidMediaObject, out); });
    EXPECT_EQ(E_POINTER, GetClassObject(clsidMediaObject, iidClassFactory, nullptr));
    EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, iidMediaObject, nullptr));
    EXPECT_EQ(E_POINTER, object->QueryInterface(iidUnknown, nullptr));
    EXPECT_EQ(1, outer.references);
    EXPECT_EQ(1U, ReferencesTo(object.get()));
}

TEST(PlainShape, EveryInterfaceLeadsToEveryOtherAndToOneIdentityAndCount) {
    for (const auto& [classId, interfaces] : bothClasses) {
        const auto object = MakeObject<IUnknown>(iidUnknown, nullptr, classId);
        const auto identity = Ask<IUnknown>(object.get(), iidCvxSettings);
        for (const GUID& from : interfaces) {
            const auto start = Ask<IUnknown>(object.get(), from);
            ASSERT_NE(nullptr, start);
            EXPECT_EQ(3U, ReferencesTo(start.get()));
            EXPECT_EQ(identity.get(), Ask<IUnknown>(start.get(), iidUnknown).get());
            for (const GUID& to : interfaces)
                EXPECT_EQ(Ask<IUnknown>(object.get(), to).get(), Ask<IUnknown>(start.get(), to).get());
        }
    }
}

/// Looks at the module's count before the object's first line and after its last, and at its own while it completes.
struct Witness {
    static inline int32_t atStart, atEnd, references;

    Witness() { atStart = ModuleLocks(); }
    ~Witness() { atEnd = ModuleLocks(); }
};

template <HRESULT result>
class WitnessedObject : private Witness, public CVXMediaObject {
public:
    HRESULT Complete() {
        references = static_cast<int32_t>(ReferencesTo(static_cast<ICVXSettings*>(this)));
        return result;
    }
};

TEST(BothShapes, KeepTheModuleFromFirstToLastLineAndDoNotSurviveAFailure) {
    const int32_t locksBefore = ModuleLocks();
    FakeOuter outer;
    for (IUnknown* whole : {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(&outer)}) {
        void* out = nullptr;
        ASSERT_EQ(S_OK, CreateObject<WitnessedObject<S_OK>>(whole, iidUnknown, &out));
        static_cast<IUnknown*>(out)->Release();
        EXPECT_EQ(std::pair(locksBefore + 1, locksBefore + 1), std::pair(Witness::atStart, Witness::atEnd));
        EXPECT_EQ(E_HANDLE, CreateObject<WitnessedObject<E_HANDLE>>(whole, iidUnknown, &out));
        EXPECT_EQ(S_FALSE, CreateObject<WitnessedObject<S_FALSE>>(whole, iidUnknown, &out));
        EXPECT_EQ(1, Witness::references);
        EXPECT_EQ(locksBefore, ModuleLocks());
        EXPECT_EQ(1, outer.references);
    }
    ExpectRefusal(E_NOINTERFACE, [](void** o) { return CreateObject<CVXMediaObject>(nullptr, iidClassFactory, o); });
    EXPECT_EQ(locksBefore, ModuleLocks());
}

TEST(AggregatedShape, AllButThePrivateHandleAskAndCountThroughTheOuterObject) {
    for (const auto& [classId, interfaces] : bothClasses) {
        FakeOuter outer;
        const int32_t locksBefore = ModuleLocks();
        auto inner = MakeObject<IUnknown>(iidUnknown, &outer, classId);
        outer.inner = inner.get();
        EXPECT_EQ(1, outer.references);  // the part keeps no reference to the whole
        EXPECT_EQ(locksBefore + 1, ModuleLocks());
        for (const GUID& iid : interfaces) {
            const auto asked = Ask<IUnknown>(inner.get(), iid);
            ASSERT_NE(nullptr, asked);
            EXPECT_EQ(2, outer.references);
            EXPECT_EQ(1U, ReferencesTo(inner.get()));
            EXPECT_EQ(static_cast<IUnknown*>(&outer), Ask<IUnknown>(asked.get(), iidUnknown).get());
            EXPECT_EQ(asked.get(), Ask<IUnknown>(asked.get(), iid).get());
        }
        EXPECT_EQ(2 * 5, outer.questions);
        EXPECT_EQ(inner.get(), Ask<IUnknown>(inner.get(), iidUnknown).get());
        EXPECT_EQ(nullptr, Ask<IUnknown>(inner.get(), iidClassFactory));
        EXPECT_EQ(E_POINTER, inner->QueryInterface(iidUnknown, nullptr));
        EXPECT_EQ(1, outer.references);
        inner.reset();
        EXPECT_EQ(locksBefore, ModuleLocks());
    }
}

}  // namespace
}  // namespace clarivex
