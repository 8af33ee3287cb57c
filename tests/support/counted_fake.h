// What the tests' own COM objects have in common.
#pragma once

#include <atomic>

#include "platform/guids.h"
#include "platform/win32.h"

namespace clarivex {

/// An object with one interface that lives on the test's stack: its references are counted, and the test looks at the
/// count.
template <class Interface>
class CountedFake : public Interface {
public:
    explicit CountedFake(const GUID& ownIid) : iid(ownIid) {}

    std::atomic<int> references = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** out) override {
        const bool known = IsEqualGUID(asked, iidUnknown) || IsEqualGUID(asked, iid);
        *out = known ? static_cast<Interface*>(this) : nullptr;
        references += known ? 1 : 0;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }

private:
    const GUID iid;
};

}  // namespace clarivex
