// The one place where the state of the process is made and streams are bound to it and to an instruction set.
#include "shell/process_objects.h"

#include <atomic>

#include "overlay/font_engine.h"
#include "pipeline/runnable_sets.h"
#include "shell/instruction_set.h"
#include "shell/size_limits.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

/// Built when the module loads, before anything of it can be called.
ProcessState processState;

std::atomic<const KernelTable*> kernels = &SelectKernels(RunnableSets());

std::atomic<bool> sizeLimitsLifted = false;

}  // namespace

ProcessState& ThisProcess() { return processState; }

const KernelTable& ProcessKernels() { return *kernels.load(); }

FramePipeline MakeProcessPipeline() { return FramePipeline(processState, MakeSystemFontEngine(), ProcessKernels()); }

std::vector<std::string_view> RunnableInstructionSets() {
    std::vector<std::string_view> names;
    const InstructionSets sets = RunnableSets();
    for (const KernelTable* table : AllKernels())
        if (CanRun(*table, sets) && (names.empty() || names.back() != table->name)) names.push_back(table->name);
    return names;
}

bool UseInstructionSet(std::string_view name) {
    const KernelTable* found = RunnableKernels(name);
    if (found == nullptr) return false;
    kernels.store(found);
    return true;
}

std::string_view InstructionSetInUse() { return kernels.load()->name; }

void LiftSizeLimits(bool lifted) { sizeLimitsLifted.store(lifted); }

bool SizeLimitsLifted() { return sizeLimitsLifted.load(); }

}  // namespace clarivex
