#include "runtime/short_string.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(ShortString, AppendsAssignsAndFormatsPartsOfItself) {
    ShortString text("0123456789");
    std::string expected = "0123456789";
    for (int i = 0; i < 6; ++i) {
        text.Append(text.Text());
        expected += expected;
        ASSERT_EQ(text.Text(), expected);
    }
    ShortString copy = text;
    copy.Append("!");
    EXPECT_EQ(text.Text(), expected) << "copies are independent";
    text = copy;
    text.Assign(text.Text() + 631);
    EXPECT_STREQ(text.Text(), "123456789!");
    text.Format("<%s|%d|%s>", text.Text(), -12, "a tail that does not fit inline");
    EXPECT_STREQ(text.Text(), "<123456789!|-12|a tail that does not fit inline>");
}

}  // namespace
}  // namespace clarivex
