// SPDX-License-Identifier: MIT
#include "framework/platform/stop_token.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace platform {

std::intptr_t StopToken::makeHandle() noexcept {
  const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  return descriptor >= 0 ? descriptor : kNoHandle;
}

void StopToken::signalHandle(std::intptr_t handle) noexcept { ::eventfd_write(static_cast<int>(handle), 1); }

void StopToken::closeHandle(std::intptr_t handle) noexcept { ::close(static_cast<int>(handle)); }

void StopToken::waitForHandle(std::intptr_t handle, std::chrono::milliseconds limit) noexcept {
  pollfd wakeUp{static_cast<int>(handle), POLLIN, 0};
  ::poll(&wakeUp, 1, static_cast<int>(limit.count()));
}

}  // namespace platform
