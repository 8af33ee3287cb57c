// Identity, interfaces, counting and aggregation of the plug-in's objects, in both shapes.
#include "shell/com_object.h"

#include <gtest/gtest.h>

#include "shell/media_object.h"
#include "shell/module.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"

namespace clarivex {
namespace {

constexpr GUID objectInterfaces[] = {iidCvxSettings, iidMediaObject, iidWmpPluginEnable, iidSpecifyPropertyPages,
                                     iidPropertyBag};

int32_t ModuleLocks() { return ThisModule().lockCount; }

ULONG ReferencesTo(IUnknown* object) {
    const ULONG added = object->AddRef();
    const ULONG left = object->Release();
    EXPECT_EQ(left + 1, added);
    return left;
}

TEST(PlainShape, EveryInterfaceLeadsToEveryOtherAndToOneIdentityAndCount) {
    const auto object = MakeObject<IUnknown>(iidUnknown);
    const auto identity = Ask<IUnknown>(object.get(), iidCvxSettings);
    for (const GUID& from : objectInterfaces) {
        const auto start = Ask<IUnknown>(object.get(), from);
        ASSERT_NE(nullptr, start);
        EXPECT_EQ(3U, ReferencesTo(start.get()));
        EXPECT_EQ(identity.get(), Ask<IUnknown>(start.get(), iidUnknown).get());
        for (const GUID& to : objectInterfaces)
            EXPECT_EQ(Ask<IUnknown>(object.get(), to).get(), Ask<IUnknown>(start.get(), to).get());
    }
}

TEST(PlainShape, OtherInterfacesAreRefusedAndClearThePointer) {
    const auto object = MakeObject<IUnknown>(iidUnknown);
    for (const GUID& iid : {iidClassFactory, iidStream, iidMediaBuffer, noGuid}) {
        void* out = object.get();
        EXPECT_EQ(E_NOINTERFACE, object->QueryInterface(iid, &out));
        EXPECT_EQ(nullptr, out);
    }
    EXPECT_EQ(E_POINTER, object->QueryInterface(iidUnknown, nullptr));
    EXPECT_EQ(1U, ReferencesTo(object.get()));
}

template <HRESULT result>
class ObjectThatFails : public CVXMediaObject {
public:
    static inline int references = 0;  // seen while it completes itself

    HRESULT Complete() {
        references = static_cast<int>(ReferencesTo(static_cast<ICVXSettings*>(this)));
        return result;
    }
};

TEST(BothShapes, ObjectThatCannotBeCompletedOrLacksTheInterfaceDoesNotSurviveItsCreation) {
    const int32_t locksBefore = ModuleLocks();
    FakeOuter outer;
    void* out = &out;
    EXPECT_EQ(E_NOINTERFACE, CreateObject<CVXMediaObject>(nullptr, iidClassFactory, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_HANDLE, CreateObject<ObjectThatFails<E_HANDLE>>(nullptr, iidUnknown, &out));
    EXPECT_EQ(1, ObjectThatFails<E_HANDLE>::references);
    EXPECT_EQ(S_FALSE, CreateObject<ObjectThatFails<S_FALSE>>(&outer, iidUnknown, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(1, outer.references);
    EXPECT_EQ(locksBefore, ModuleLocks());
}

/// Looks at the module's count before the object's first line and after its last.
struct CountWitness {
    static inline int32_t atStart = 0;
    static inline int32_t atEnd = 0;

    CountWitness() { atStart = ModuleLocks(); }
    ~CountWitness() { atEnd = ModuleLocks(); }
};
class WitnessedObject : private CountWitness, public CVXMediaObject {};

TEST(BothShapes, KeepTheModuleFromTheirFirstLineToTheirLast) {
    const int32_t locksBefore = ModuleLocks();
    FakeOuter outer;
    for (IUnknown* whole : {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(&outer)}) {
        CountWitness::atStart = CountWitness::atEnd = -1;
        void* out = nullptr;
        ASSERT_EQ(S_OK, CreateObject<WitnessedObject>(whole, iidUnknown, &out));
        static_cast<IUnknown*>(out)->Release();
        EXPECT_EQ(locksBefore + 1, CountWitness::atStart);
        EXPECT_EQ(locksBefore + 1, CountWitness::atEnd);
        EXPECT_EQ(locksBefore, ModuleLocks());
    }
}

TEST(AggregatedShape, AllButThePrivateHandleAskAndCountThroughTheOuterObject) {
    FakeOuter outer;
    const int32_t locksBefore = ModuleLocks();
    auto inner = MakeObject<IUnknown>(iidUnknown, &outer);
    outer.inner = inner.get();
    EXPECT_EQ(1, outer.references);  // the part keeps no reference to the whole
    EXPECT_EQ(locksBefore + 1, ModuleLocks());
    for (const GUID& iid : objectInterfaces) {
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

}  // namespace
}  // namespace clarivex
