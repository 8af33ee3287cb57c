#include "pipeline/runnable_sets.h"

#include <algorithm>

#include "runtime/cpu_features.h"

namespace clarivex {

// Asked once: in a virtual machine each question to the processor takes some microseconds.
InstructionSets RunnableSets() {
    static const SimdSupport support = DetectSimdSupport();
    return {.sse2 = support.sse2, .avx2 = support.avx2, .avx512 = support.avx512bw};
}

const KernelTable* RunnableKernels(std::string_view name) {
    const InstructionSets sets = RunnableSets();
    if (name == "auto") return &SelectKernels(sets);
    const auto tables = AllKernels();
    const auto found = std::find_if(tables.begin(), tables.end(), [&](const KernelTable* table) {
        return table->name == name && CanRun(*table, sets);
    });
    return found == tables.end() ? nullptr : *found;
}

}  // namespace clarivex
