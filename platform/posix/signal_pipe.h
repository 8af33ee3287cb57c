// What wakes those that wait for input when a signal has come.
#pragma once

namespace clarivex {

/// The reading end of a pipe that has something to read from the first noted signal on, for good; -1 while no signals
/// are noted.
int SignalPipe();

}  // namespace clarivex
