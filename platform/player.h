// What the media player asks of a plug-in beyond the system's interfaces. No header of the compiler declares it.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// Lets the player switch the plug-in on and off while it stays in the chain.
struct IWMPPluginEnable : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetEnable(BOOL enable) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetEnable(BOOL* enable) = 0;
};

inline constexpr GUID iidWmpPluginEnable{0x5FCA444C, 0x7AD1, 0x479D, {0xA4, 0xEF, 0x40, 0x56, 0x6A, 0x53, 0x09, 0xD6}};

}  // namespace clarivex
