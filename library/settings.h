// The settings of a stream: checked, and with the decisions that follow from them.
#pragma once

#include <clarivex/clarivex.h>

#include <cstdint>

#include "runtime/planes.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// Settings that a stream can run with.
struct SettledSettings {
    cvx_settings asked{};
    const KernelTable* kernels = nullptr;
    bool enlarged = false;
};

/// The settings of a stream that nobody has told anything.
cvx_settings DefaultSettings();

/// Checks the size and the settings, null for the defaults, and decides what follows. May measure the processor.
///
/// result  CVX_OK, or an error, with `settled` unchanged
cvx_result SettleSettings(const FrameSize& source, const cvx_settings* asked, SettledSettings& settled);

/// The size of the pictures that come out.
FrameSize TargetSize(const FrameSize& source, const SettledSettings& settings);

}  // namespace clarivex
