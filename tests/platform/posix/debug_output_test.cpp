// Debug output where there is no debugger to ask for it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/win32.h"

namespace clarivex {
namespace {

std::string WrittenWhen(const char* trace) {
    trace != nullptr ? setenv("CLARIVEX_TRACE", trace, 1) : unsetenv("CLARIVEX_TRACE");
    testing::internal::CaptureStderr();
    OutputDebugStringA("a line\n");
    unsetenv("CLARIVEX_TRACE");
    return testing::internal::GetCapturedStderr();
}

TEST(DebugOutput, GoesToStandardErrorOnlyWhenAskedFor) {
    EXPECT_EQ("", WrittenWhen(nullptr));
    EXPECT_EQ("a line\n", WrittenWhen("1"));
}

}  // namespace
}  // namespace clarivex
