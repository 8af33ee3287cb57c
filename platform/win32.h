// The one file that asks which system this is: the Windows calls and interfaces that the floors above use, from the
// system's own headers or from a layer of ours with the same names and signatures.
#pragma once

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <objbase.h>
#include <mmsystem.h>
#include <oaidl.h>
#include <ocidl.h>
#include <strmif.h>

#include <amvideo.h>
#include <dvdmedia.h>

#include <mediaerr.h>
#include <mediaobj.h>

extern "C" {  // the header does not say so itself
#include <dmort.h>
}

#undef small  // a type name of the interface compiler's headers

// The system's header has these as unsigned numbers, but they are results, which are signed.
#undef DMO_E_INVALIDSTREAMINDEX
#undef DMO_E_INVALIDTYPE
#undef DMO_E_TYPE_NOT_SET
#undef DMO_E_NOTACCEPTING
#undef DMO_E_TYPE_NOT_ACCEPTED
#undef DMO_E_NO_MORE_ITEMS

#else

#include "platform/posix/win32.h"

#endif

inline constexpr HRESULT DMO_E_INVALIDSTREAMINDEX = static_cast<HRESULT>(0x80040201U);
inline constexpr HRESULT DMO_E_INVALIDTYPE = static_cast<HRESULT>(0x80040202U);
inline constexpr HRESULT DMO_E_TYPE_NOT_SET = static_cast<HRESULT>(0x80040203U);
inline constexpr HRESULT DMO_E_NOTACCEPTING = static_cast<HRESULT>(0x80040204U);
inline constexpr HRESULT DMO_E_TYPE_NOT_ACCEPTED = static_cast<HRESULT>(0x80040205U);
inline constexpr HRESULT DMO_E_NO_MORE_ITEMS = static_cast<HRESULT>(0x80040206U);
