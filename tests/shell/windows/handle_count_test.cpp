// The count of handles sees one more: otherwise the tests that use it could not fail.
#include "tests/shell/windows/handle_count.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

TEST(OpenHandles, CountsEachHandle) {
    OpenHandles();  // what the first count opens stays open
    const int64_t before = OpenHandles();
    const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HKEY key = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software", 0, KEY_READ, &key);
    EXPECT_EQ(before + 2, OpenHandles());
    RegCloseKey(key);
    CloseHandle(event);
    EXPECT_EQ(before, OpenHandles());
}

}  // namespace
}  // namespace clarivex
