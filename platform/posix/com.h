// The system's general interfaces, their operations in slot order, and the memory that crosses them.
#pragma once

#include <cstddef>

#include "platform/posix/base_types.h"

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    ~IUnknown() = default;  // an object ends through Release, never through a pointer to an interface
};

struct IClassFactory : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;

protected:
    ~IClassFactory() = default;
};

struct STATSTG;

struct ISequentialStream : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Read(void* bytes, ULONG count, ULONG* read) = 0;
    virtual HRESULT STDMETHODCALLTYPE Write(const void* bytes, ULONG count, ULONG* written) = 0;

protected:
    ~ISequentialStream() = default;
};

struct IStream : public ISequentialStream {
    virtual HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyTo(IStream* target, ULARGE_INTEGER count, ULARGE_INTEGER* read,
                                             ULARGE_INTEGER* written) = 0;
    virtual HRESULT STDMETHODCALLTYPE Commit(DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Revert() = 0;
    virtual HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
    virtual HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IStream** stream) = 0;

protected:
    ~IStream() = default;
};

struct IPersist : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) = 0;

protected:
    ~IPersist() = default;
};

struct IPersistStream : public IPersist {
    virtual HRESULT STDMETHODCALLTYPE IsDirty() = 0;
    virtual HRESULT STDMETHODCALLTYPE Load(IStream* source) = 0;
    virtual HRESULT STDMETHODCALLTYPE Save(IStream* target, BOOL clearDirty) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) = 0;

protected:
    ~IPersistStream() = default;
};

struct CAUUID {
    ULONG cElems;
    GUID* pElems;
};

struct ISpecifyPropertyPages : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetPages(CAUUID* pages) = 0;

protected:
    ~ISpecifyPropertyPages() = default;
};

using VARTYPE = uint16_t;
inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_UNKNOWN = 13;

struct VARIANT {
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union {
        LONGLONG llVal;
        LONG lVal;
        IUnknown* punkVal;
    };
};

struct IErrorLog;

struct IPropertyBag : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog* errorLog) = 0;
    virtual HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) = 0;

protected:
    ~IPropertyBag() = default;
};

/// Memory that one side of an interface allocates and the other frees. Null when memory is short.
void* CoTaskMemAlloc(size_t size);

/// Null is ignored.
void CoTaskMemFree(void* memory);

/// Compares without regard to the case of letters; 0 means equal.
int _wcsicmp(const wchar_t* a, const wchar_t* b);
