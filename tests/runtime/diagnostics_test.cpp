#include "runtime/diagnostics.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

class TracedLine {
public:
    TracedLine() : previous(SetTraceSink([](const char* line) { last = line; })) {}
    ~TracedLine() { SetTraceSink(previous); }

    static inline std::string last;

private:
    TraceSink previous;
};

TEST(Trace, CutsMessagesTo1499CharactersAndEndsEachWithANewline) {
    const TracedLine traced;
    Trace("       dim %d x %d", 640, -480);
    EXPECT_EQ(TracedLine::last, "       dim 640 x -480\n");
    for (const size_t length : {0, 1498, 1499, 1500, 5000}) {
        Trace("%s", std::string(length, 'x').c_str());
        EXPECT_EQ(TracedLine::last, std::string(std::min<size_t>(length, 1499), 'x') + "\n");
    }
}

}  // namespace
}  // namespace clarivex
