#include "runtime/diagnostics.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include "platform/win32.h"

namespace clarivex {
namespace {

void PassToDebugger(const char* line) { OutputDebugStringA(line); }

TraceSink traceSink = PassToDebugger;

}  // namespace

TraceSink SetTraceSink(TraceSink sink) { return std::exchange(traceSink, sink); }

void Trace(const char* format, ...) {
    constexpr int bufferBytes = 1500;
    char line[bufferBytes + 1];  // the newline takes the terminator's place
    va_list arguments;
    va_start(arguments, format);
    const int characters = std::vsnprintf(line, bufferBytes, format, arguments);
    va_end(arguments);
    const int length = std::clamp(characters, 0, bufferBytes - 1);
    line[length] = '\n';
    line[length + 1] = '\0';
    traceSink(line);
}

}  // namespace clarivex
