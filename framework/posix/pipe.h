// SPDX-License-Identifier: MIT
// Named pipes among local files. Whether one can be opened, read and written depends on who is at its other
// end, perhaps for ever: each of these waits as the system's own call does, but ends with ECANCELED as soon
// as the calling thread is asked to stop.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace platform {

// As open(), for any file. A pipe that is read is open once its other end has sent something, or has closed.
[[nodiscard]] int openOrWait(const char* path, int flags, mode_t mode) noexcept;
// As read() and write() on what openOrWait() has opened. Interrupted calls are repeated.
[[nodiscard]] ssize_t readOrWait(int descriptor, void* buffer, std::size_t size) noexcept;
[[nodiscard]] ssize_t writeOrWait(int descriptor, const void* data, std::size_t size) noexcept;

}  // namespace platform
