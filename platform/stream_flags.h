// Flags of GetInputStreamInfo and GetOutputStreamInfo, which not every compiler's headers have.
#pragma once

#include "platform/win32.h"

namespace clarivex {

inline constexpr DWORD streamWholeSamples = 0x1;
inline constexpr DWORD streamSingleSamplePerBuffer = 0x2;
inline constexpr DWORD streamHoldsBuffers = 0x8;  ///< inputs only

}  // namespace clarivex
