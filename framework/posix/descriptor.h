// SPDX-License-Identifier: MIT
// A host may have closed its standard input, output or error, and the system gives out the smallest number
// that is free. What the host or a library of others reads and writes there must reach no file or server.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace platform {

// The same with a number above these; -1 when there is none. A descriptor of -1 stays one.
[[nodiscard]] inline int aboveStandard(int descriptor) noexcept {
  if (descriptor < 0 || descriptor > STDERR_FILENO) return descriptor;
  const int above = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  ::close(descriptor);
  errno = error;
  return above;
}

}  // namespace platform
