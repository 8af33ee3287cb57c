// What FFmpeg's libraries say: nothing of it reaches the terminal, the last complaint is kept for error messages.
#pragma once

#include <string>

namespace clarivex {

/// Has the libraries' messages kept from now on. Any number of calls.
void CatchLibraryLog();

/// The last error that was logged since the last call, in one line fit for a terminal; empty when there was none. For any
/// thread.
std::string TakeLastLibraryError();

}  // namespace clarivex
