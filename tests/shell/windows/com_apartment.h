// What tests need of the system's COM: an apartment, and classes that are known while a test runs.
#pragma once

#include "platform/win32.h"
#include "tests/support/test_object.h"

namespace clarivex {

class ComApartment {
public:
    explicit ComApartment(DWORD kind) { Require(CoInitializeEx(nullptr, kind), "no apartment"); }
    ~ComApartment() { CoUninitialize(); }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};

/// While it lives, this process finds the factory under a class identifier.
class OfferedClass {
public:
    OfferedClass(REFCLSID classId, IClassFactory& factory) {
        Require(CoRegisterClassObject(classId, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
                "CoRegisterClassObject");
    }
    ~OfferedClass() { CoRevokeClassObject(cookie); }
    OfferedClass(const OfferedClass&) = delete;
    OfferedClass& operator=(const OfferedClass&) = delete;

private:
    DWORD cookie = 0;
};

}  // namespace clarivex
