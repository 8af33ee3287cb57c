// The two registrars that enter a plug-in: the system's own, which runs registry scripts out of a module, and the
// player's, which keeps the list of plug-ins. No header of the compiler declares them. Include in Windows sources only.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// Runs registry scripts. A script's %KEY% stands for what AddReplacement gave for KEY; the type of a script resource
/// is "REGISTRY".
struct IRegistrar : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE AddReplacement(LPCOLESTR key, LPCOLESTR item) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearReplacements() = 0;
    virtual HRESULT STDMETHODCALLTYPE ResourceRegisterSz(LPCOLESTR file, LPCOLESTR name, LPCOLESTR type) = 0;
    virtual HRESULT STDMETHODCALLTYPE ResourceUnregisterSz(LPCOLESTR file, LPCOLESTR name, LPCOLESTR type) = 0;
    virtual HRESULT STDMETHODCALLTYPE FileRegister(LPCOLESTR file) = 0;
    virtual HRESULT STDMETHODCALLTYPE FileUnregister(LPCOLESTR file) = 0;
    virtual HRESULT STDMETHODCALLTYPE StringRegister(LPCOLESTR script) = 0;
    virtual HRESULT STDMETHODCALLTYPE StringUnregister(LPCOLESTR script) = 0;
    virtual HRESULT STDMETHODCALLTYPE ResourceRegister(LPCOLESTR file, UINT id, LPCOLESTR type) = 0;
    virtual HRESULT STDMETHODCALLTYPE ResourceUnregister(LPCOLESTR file, UINT id, LPCOLESTR type) = 0;
};

/// A kind of media that a plug-in takes.
struct PluginMediaType {
    GUID majorType;
    GUID subtype;
};

/// The player's list of plug-ins. Identifiers are passed by value.
struct IWMPMediaPluginRegistrar : public IUnknown {
    /// types  `typeCount` of PluginMediaType
    virtual HRESULT STDMETHODCALLTYPE WMPRegisterPlayerPlugin(BSTR name, BSTR description, BSTR uninstall,
                                                              DWORD priority, GUID pluginType, CLSID classId,
                                                              UINT typeCount, void* types) = 0;
    virtual HRESULT STDMETHODCALLTYPE WMPUnRegisterPlayerPlugin(GUID pluginType, CLSID classId) = 0;
};

// clang-format off
inline constexpr GUID clsidRegistrar       {0x44EC053A, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};
inline constexpr GUID iidRegistrar         {0x44EC053B, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};
inline constexpr GUID clsidPluginRegistrar {0x5569E7F5, 0x424B, 0x4B93, {0x89, 0xCA, 0x79, 0xD1, 0x79, 0x24, 0x68, 0x9A}};
inline constexpr GUID iidPluginRegistrar   {0x68E27045, 0x05BD, 0x40B2, {0x97, 0x20, 0x23, 0x08, 0x8C, 0x78, 0xE3, 0x90}};
inline constexpr GUID pluginTypeDsp        {0x6434BAEA, 0x4954, 0x498D, {0xAB, 0xD5, 0x2B, 0x07, 0x12, 0x3E, 0x1F, 0x04}};
// clang-format on

}  // namespace clarivex
