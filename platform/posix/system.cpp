// Locks, events, threads and clocks on the POSIX calls.
#include "platform/posix/system.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <new>
#include <thread>

namespace {

struct Event {
    std::mutex mutex;
    std::condition_variable changed;
    bool manualReset = false;
    bool signalled = false;
};

Event* EventOf(HANDLE handle) { return static_cast<Event*>(handle); }

constexpr int64_t nanosecondsPerSecond = 1'000'000'000;

int64_t MonotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * nanosecondsPerSecond + now.tv_nsec;
}

thread_local int threadPriority = THREAD_PRIORITY_NORMAL;

bool IsPriority(int priority) {
    return (priority >= -2 && priority <= 2) || priority == -15 || priority == THREAD_PRIORITY_TIME_CRITICAL;
}

}  // namespace

void InitializeCriticalSection(CRITICAL_SECTION* section) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&section->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

void DeleteCriticalSection(CRITICAL_SECTION* section) { pthread_mutex_destroy(&section->mutex); }

void EnterCriticalSection(CRITICAL_SECTION* section) { pthread_mutex_lock(&section->mutex); }

void LeaveCriticalSection(CRITICAL_SECTION* section) { pthread_mutex_unlock(&section->mutex); }

HANDLE CreateEventA(void*, BOOL manualReset, BOOL initiallySignalled, const char*) {
    auto* event = new (std::nothrow) Event;
    if (event != nullptr) {
        event->manualReset = manualReset != FALSE;
        event->signalled = initiallySignalled != FALSE;
    }
    return event;
}

BOOL SetEvent(HANDLE handle) {
    Event* event = EventOf(handle);
    const std::lock_guard guard(event->mutex);
    event->signalled = true;
    // Under the lock: a waiter may close the event as soon as it gets through.
    event->manualReset ? event->changed.notify_all() : event->changed.notify_one();
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    Event* event = EventOf(handle);
    const auto isSignalled = [event] { return event->signalled; };
    std::unique_lock guard(event->mutex);
    if (milliseconds == INFINITE)
        event->changed.wait(guard, isSignalled);
    else if (!event->changed.wait_for(guard, std::chrono::milliseconds(milliseconds), isSignalled))
        return WAIT_TIMEOUT;
    event->signalled = event->manualReset;
    return WAIT_OBJECT_0;
}

BOOL CloseHandle(HANDLE handle) {
    delete EventOf(handle);
    return TRUE;
}

void Sleep(DWORD milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

DWORD GetCurrentThreadId() {
    static thread_local const auto id = static_cast<DWORD>(gettid());
    return id;
}

HANDLE GetCurrentThread() { return reinterpret_cast<HANDLE>(intptr_t{-2}); }

BOOL SetThreadPriority(HANDLE, int priority) {
    if (!IsPriority(priority)) return FALSE;
    threadPriority = priority;
    return TRUE;
}

int GetThreadPriority(HANDLE) { return threadPriority; }

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    count->QuadPart = MonotonicNanoseconds();
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* countsPerSecond) {
    countsPerSecond->QuadPart = nanosecondsPerSecond;
    return TRUE;
}

DWORD timeGetTime() {
    constexpr int64_t nanosecondsPerMillisecond = 1'000'000;
    return static_cast<DWORD>(MonotonicNanoseconds() / nanosecondsPerMillisecond);
}

void OutputDebugStringA(const char* text) {
    if (std::getenv("CLARIVEX_TRACE") != nullptr) std::fputs(text, stderr);
}
