#include "runtime/diagnostics.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(Trace, CutsMessagesTo1499CharactersAndEndsEachWithANewline) {
    static std::string last;
    const TraceSink previous = SetTraceSink([](const char* line) { last = line; });
    Trace("       dim %d x %d", 640, -480);
    EXPECT_EQ(last, "       dim 640 x -480\n");
    for (const size_t length : {0, 1498, 1499, 1500, 5000}) {
        Trace("%s", std::string(length, 'x').c_str());
        EXPECT_EQ(last, std::string(std::min<size_t>(length, 1499), 'x') + "\n");
    }
    SetTraceSink(previous);
}

}  // namespace
}  // namespace clarivex
