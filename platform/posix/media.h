// Media types, video headers and the interfaces of media objects and their buffers.
#pragma once

#include "platform/posix/com.h"

inline constexpr HRESULT DMO_E_INVALIDSTREAMINDEX = static_cast<HRESULT>(0x80040201U);
inline constexpr HRESULT DMO_E_INVALIDTYPE = static_cast<HRESULT>(0x80040202U);
inline constexpr HRESULT DMO_E_TYPE_NOT_SET = static_cast<HRESULT>(0x80040203U);
inline constexpr HRESULT DMO_E_NOTACCEPTING = static_cast<HRESULT>(0x80040204U);
inline constexpr HRESULT DMO_E_TYPE_NOT_ACCEPTED = static_cast<HRESULT>(0x80040205U);
inline constexpr HRESULT DMO_E_NO_MORE_ITEMS = static_cast<HRESULT>(0x80040206U);

using REFERENCE_TIME = int64_t;  // 100 nanoseconds

struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};

struct VIDEOINFOHEADER {
    RECT rcSource;
    RECT rcTarget;
    DWORD dwBitRate;
    DWORD dwBitErrorRate;
    REFERENCE_TIME AvgTimePerFrame;
    BITMAPINFOHEADER bmiHeader;
};

struct VIDEOINFOHEADER2 {
    RECT rcSource;
    RECT rcTarget;
    DWORD dwBitRate;
    DWORD dwBitErrorRate;
    REFERENCE_TIME AvgTimePerFrame;
    DWORD dwInterlaceFlags;
    DWORD dwCopyProtectFlags;
    DWORD dwPictAspectRatioX;
    DWORD dwPictAspectRatioY;
    union {
        DWORD dwControlFlags;
        DWORD dwReserved1;
    };
    DWORD dwReserved2;
    BITMAPINFOHEADER bmiHeader;
};

struct DMO_MEDIA_TYPE {
    GUID majortype;
    GUID subtype;
    BOOL bFixedSizeSamples;
    BOOL bTemporalCompression;
    ULONG lSampleSize;
    GUID formattype;
    IUnknown* pUnk;
    ULONG cbFormat;
    BYTE* pbFormat;
};

/// Copies a type with a format block of its own; what `target` held before is not freed.
///
/// result  E_POINTER for null, E_OUTOFMEMORY when the block cannot be had: `target` then has none.
HRESULT MoCopyMediaType(DMO_MEDIA_TYPE* target, const DMO_MEDIA_TYPE* source);

/// Frees what a type owns and leaves the type without it; the other fields stay. E_POINTER for null.
HRESULT MoFreeMediaType(DMO_MEDIA_TYPE* type);

struct IMediaBuffer : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetLength(DWORD length) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMaxLength(DWORD* maxLength) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetBufferAndLength(BYTE** buffer, DWORD* length) = 0;

protected:
    ~IMediaBuffer() = default;
};

struct DMO_OUTPUT_DATA_BUFFER {
    IMediaBuffer* pBuffer;
    DWORD dwStatus;
    REFERENCE_TIME rtTimestamp;
    REFERENCE_TIME rtTimelength;
};

enum : DWORD { DMO_INPUT_STATUSF_ACCEPT_DATA = 0x1 };

enum : DWORD {
    DMO_INPUT_DATA_BUFFERF_SYNCPOINT = 0x1,
    DMO_INPUT_DATA_BUFFERF_TIME = 0x2,
    DMO_INPUT_DATA_BUFFERF_TIMELENGTH = 0x4
};

enum : DWORD {
    DMO_OUTPUT_DATA_BUFFERF_SYNCPOINT = 0x1,
    DMO_OUTPUT_DATA_BUFFERF_TIME = 0x2,
    DMO_OUTPUT_DATA_BUFFERF_TIMELENGTH = 0x4,
    DMO_OUTPUT_DATA_BUFFERF_INCOMPLETE = 0x1000000
};

enum : DWORD { DMO_SET_TYPEF_TEST_ONLY = 0x1, DMO_SET_TYPEF_CLEAR = 0x2 };

struct IMediaObject : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetStreamCount(DWORD* inputs, DWORD* outputs) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInputStreamInfo(DWORD index, DWORD* flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOutputStreamInfo(DWORD index, DWORD* flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOutputType(DWORD index, DWORD typeIndex, DMO_MEDIA_TYPE* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOutputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOutputCurrentType(DWORD index, DMO_MEDIA_TYPE* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInputSizeInfo(DWORD index, DWORD* size, DWORD* lookahead,
                                                       DWORD* alignment) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOutputSizeInfo(DWORD index, DWORD* size, DWORD* alignment) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInputMaxLatency(DWORD index, REFERENCE_TIME* latency) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetInputMaxLatency(DWORD index, REFERENCE_TIME latency) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flush() = 0;
    virtual HRESULT STDMETHODCALLTYPE Discontinuity(DWORD index) = 0;
    virtual HRESULT STDMETHODCALLTYPE AllocateStreamingResources() = 0;
    virtual HRESULT STDMETHODCALLTYPE FreeStreamingResources() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInputStatus(DWORD index, DWORD* flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE ProcessInput(DWORD index, IMediaBuffer* buffer, DWORD flags, REFERENCE_TIME time,
                                                   REFERENCE_TIME length) = 0;
    virtual HRESULT STDMETHODCALLTYPE ProcessOutput(DWORD flags, DWORD count, DMO_OUTPUT_DATA_BUFFER* buffers,
                                                    DWORD* status) = 0;
    virtual HRESULT STDMETHODCALLTYPE Lock(LONG lock) = 0;

protected:
    ~IMediaObject() = default;
};
