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

#include "platform/windows/result_codes.h"

#else

#include "platform/posix/win32.h"

#endif
