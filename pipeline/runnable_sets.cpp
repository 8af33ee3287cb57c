#include "pipeline/runnable_sets.h"

#include "runtime/cpu_features.h"

namespace clarivex {

// Asked once: in a virtual machine each question to the processor takes some microseconds.
InstructionSets RunnableSets() {
    static const SimdSupport support = DetectSimdSupport();
    return {.sse2 = support.sse2, .avx2 = support.avx2, .avx512 = support.avx512bw, .avx512vbmi = support.avx512vbmi};
}

const KernelTable* RunnableKernels(std::string_view name) {
    const InstructionSets sets = RunnableSets();
    if (name == "auto") return &SelectKernels(sets);
    const KernelTable* widest = nullptr;
    for (const KernelTable* table : AllKernels())
        if (table->name == name && CanRun(*table, sets)) widest = table;
    return widest;
}

}  // namespace clarivex
