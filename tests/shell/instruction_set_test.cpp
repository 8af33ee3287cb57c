// The choice of an instruction set by name.
#include "shell/instruction_set.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

class InstructionSetChoice : public testing::Test {
protected:
    ~InstructionSetChoice() override { UseInstructionSet("auto"); }
};

TEST_F(InstructionSetChoice, EveryRunnableOneCanBeTaken) {
    const auto runnable = RunnableInstructionSets();
    ASSERT_FALSE(runnable.empty());
    EXPECT_EQ("scalar", runnable.front());
    for (const std::string_view name : runnable) {
        EXPECT_TRUE(UseInstructionSet(name));
        EXPECT_EQ(name, InstructionSetInUse());
    }
}

TEST_F(InstructionSetChoice, AutoIsTheWidestAndUnknownNamesChangeNothing) {
    ASSERT_TRUE(UseInstructionSet("scalar"));
    for (const std::string_view name : {"", "SSE2", "avx", "scalar "}) {
        EXPECT_FALSE(UseInstructionSet(name)) << name;
        EXPECT_EQ("scalar", InstructionSetInUse());
    }
    EXPECT_TRUE(UseInstructionSet("auto"));
    EXPECT_EQ(RunnableInstructionSets().back(), InstructionSetInUse());
}

}  // namespace
}  // namespace clarivex
