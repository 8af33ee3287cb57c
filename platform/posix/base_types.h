// Integer types, identifiers and result codes under their Windows names.
#pragma once

#include <cstdint>
#include <cstring>

using BYTE = uint8_t;
using WORD = uint16_t;
using DWORD = uint32_t;
using BOOL = int32_t;
using LONG = int32_t;
using ULONG = uint32_t;
using UINT = uint32_t;
using LONGLONG = int64_t;
using ULONGLONG = uint64_t;
using HRESULT = int32_t;
using HANDLE = void*;
using HMODULE = struct LoadedModule*;
using OLECHAR = wchar_t;
using LPCOLESTR = const OLECHAR*;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

#define STDMETHODCALLTYPE  // calls have one convention here
#define WINAPI

union LARGE_INTEGER {
    LONGLONG QuadPart;
};
union ULARGE_INTEGER {
    ULONGLONG QuadPart;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool IsEqualGUID(REFGUID a, REFGUID b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001U);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003U);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005U);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFU);
inline constexpr HRESULT E_HANDLE = static_cast<HRESULT>(0x80070006U);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000EU);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057U);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110U);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111U);

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }
