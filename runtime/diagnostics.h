// Messages for whoever watches the program with a debugger.
#pragma once

namespace clarivex {

/// Formats like printf, cuts the text to 1499 characters, adds a newline and passes it to OutputDebugStringA.
[[gnu::format(printf, 1, 2)]] void Trace(const char* format, ...);

/// Where Trace puts its lines: OutputDebugStringA, or what a test puts in its place.
using TraceSink = void (*)(const char* line);

/// Returns the sink that was set before. Not to be called while other threads trace.
TraceSink SetTraceSink(TraceSink sink);

}  // namespace clarivex
