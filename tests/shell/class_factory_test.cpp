// The way from a class identifier to an object.
#include "shell/class_factory.h"

#include <gtest/gtest.h>

#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"

namespace clarivex {
namespace {

TEST(GetClassObject, UnknownClassesAndInterfacesClearThePointer) {
    void* out = &out;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, GetClassObject(iidMediaObject, iidClassFactory, &out));
    EXPECT_EQ(nullptr, out);
    out = &out;
    EXPECT_EQ(E_NOINTERFACE, GetClassObject(clsidMediaObject, iidMediaObject, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_POINTER, GetClassObject(clsidMediaObject, iidClassFactory, nullptr));
}

TEST(ClassFactory, IsOneAndGivesAWholeOnlyThePrivateHandle) {
    FakeOuter outer;
    const auto factory = MediaObjectFactory();
    EXPECT_EQ(factory, MediaObjectFactory());
    EXPECT_EQ(factory.get(), Ask<IClassFactory>(factory.get(), iidUnknown).get());
    EXPECT_EQ(nullptr, Ask<IUnknown>(factory.get(), iidMediaObject));
    void* out = &out;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(&outer, iidMediaObject, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(1, outer.references);
    EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, iidMediaObject, nullptr));
}

}  // namespace
}  // namespace clarivex
