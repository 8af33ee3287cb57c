#include "host/film/library_log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include "host/errors.h"

extern "C" {
#include <libavutil/log.h>
}

namespace clarivex {

namespace {

std::mutex lock;
std::string lastError;

void Keep(void* speaker, int level, const char* format, va_list arguments) {
    if (level > AV_LOG_ERROR) return;
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    std::string line(text);
    while (!line.empty() && (line.back() == '\n' || line.back() == '.')) line.pop_back();
    if (line.empty()) return;
    const AVClass* const kind = speaker ? *static_cast<const AVClass**>(speaker) : nullptr;
    const std::lock_guard held(lock);
    lastError = PrintablePath(kind ? std::string(kind->item_name(speaker)) + ": " + line : line);
}

}  // namespace

void CatchLibraryLog() { av_log_set_callback(Keep); }

std::string TakeLastLibraryError() {
    const std::lock_guard held(lock);
    return std::exchange(lastError, {});
}

}  // namespace clarivex
