// The choice of an instruction set for the media objects of this process, by name.
#pragma once

#include <string_view>
#include <vector>

namespace clarivex {

/// Names of the instruction sets that this processor and operating system can run, plainest first: of "scalar", "sse2",
/// "avx2" and "avx512". All give the same bytes.
std::vector<std::string_view> RunnableInstructionSets();

/// Takes an instruction set for the media objects made from now on; "auto" takes the widest, as does a process that
/// never asks. False, with nothing changed, for an unknown name or one that cannot run here.
bool UseInstructionSet(std::string_view name);

/// Name of the instruction set that the next media object takes.
std::string_view InstructionSetInUse();

}  // namespace clarivex
