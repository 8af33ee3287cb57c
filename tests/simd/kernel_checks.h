// One check a kernel: that two tables give the same bytes and stay inside their rows.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <span>

#include "simd/kernel_table.h"

namespace clarivex {

struct Comparison {
    const KernelTable* reference;
    const KernelTable* tested;
};

struct KernelCheck {
    const char* name;
    testing::AssertionResult (*run)(const Comparison& tables);
};

/// For the failure texts of tests that take them as parameters.
std::ostream& operator<<(std::ostream& out, const Comparison& tables);
std::ostream& operator<<(std::ostream& out, const KernelCheck& check);

/// A check for every kernel of the table. Each goes through all fills, every width of 0 … 200 and some long rows,
/// extreme and random parameters, and aligned and unaligned rows.
std::span<const KernelCheck> AllKernelChecks();

/// The check of that name.
const KernelCheck& KernelCheckNamed(const char* name);

}  // namespace clarivex
