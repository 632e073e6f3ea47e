// SPDX-License-Identifier: MIT
// For framework/posix/*.cpp: errno as the error numbers that hosts see.
#pragma once

#include <cstdint>

namespace platform {

// Set in numbers that stand for an errno without a counterpart: kErrnoBit | errno, so that nothing is lost.
inline constexpr std::uint32_t kErrnoBit = 0x20000000;

// ENOENT -> 2, EACCES -> 5, ECONNRESET -> 10054, ...; 0 -> 0. See posix/last_error.cpp.
[[nodiscard]] std::uint32_t lastErrorFromErrno(int errnoValue) noexcept;

// Stores the calling thread's errno as its last error. Call it right after the failed call.
void setLastErrorFromErrno() noexcept;

}  // namespace platform
