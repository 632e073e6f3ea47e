// SPDX-License-Identifier: MIT
// What this process has taken of the machine.
#pragma once

#include <cstdint>

// Seconds of processors, the system's share with it.
[[nodiscard]] double processorSeconds();

// The most bytes of memory that the process has had at a time. Windows counts from its start.
[[nodiscard]] std::uint64_t peakMemory();

// The peak counts from here. False where the system cannot be told so.
[[nodiscard]] bool forgetPeakMemory();
