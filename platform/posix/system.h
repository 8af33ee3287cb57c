// Locks, events, threads, clocks and debug output under their Windows names.
#pragma once

#include <pthread.h>

#include "platform/posix/base_types.h"

/// May be entered again by the thread that is inside; each entry is to be left.
struct CRITICAL_SECTION {
    pthread_mutex_t mutex;
};

void InitializeCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);

inline constexpr DWORD INFINITE = 0xFFFFFFFFU;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;

/// An event; with manualReset it stays signalled, otherwise one wait takes the signal back.
///
/// security, name  not used: the event belongs to the process and has no name
HANDLE CreateEventA(void* security, BOOL manualReset, BOOL initiallySignalled, const char* name);
BOOL SetEvent(HANDLE event);

/// WAIT_OBJECT_0 when the event is or becomes signalled, WAIT_TIMEOUT otherwise.
DWORD WaitForSingleObject(HANDLE event, DWORD milliseconds);
BOOL CloseHandle(HANDLE event);

void Sleep(DWORD milliseconds);

/// Not 0, and no other living thread's.
DWORD GetCurrentThreadId();

/// Stands for the calling thread in the calls below.
HANDLE GetCurrentThread();

inline constexpr int THREAD_PRIORITY_NORMAL = 0;
inline constexpr int THREAD_PRIORITY_TIME_CRITICAL = 15;

/// The priority is remembered and has no effect: raising it takes rights that programs rarely have here.
///
/// priority  -15, -2 … 2 or 15; anything else gives FALSE and changes nothing
BOOL SetThreadPriority(HANDLE thread, int priority);
int GetThreadPriority(HANDLE thread);

/// A steady counter and its counts a second.
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* countsPerSecond);

/// Milliseconds, modulo 2³².
DWORD timeGetTime();

/// Writes to standard error when the environment variable CLARIVEX_TRACE is set, otherwise nowhere.
void OutputDebugStringA(const char* text);
