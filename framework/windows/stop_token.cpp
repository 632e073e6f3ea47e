// SPDX-License-Identifier: MIT
#include "framework/platform/stop_token.h"

#include "framework/platform/last_error.h"
#include "framework/windows/native_handle.h"

namespace platform {

std::intptr_t StopToken::makeHandle() noexcept {
  const LastErrorKeeper keeper;
  const HANDLE event = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
  return event != nullptr ? reinterpret_cast<std::intptr_t>(event) : kNoHandle;
}

void StopToken::signalHandle(std::intptr_t handle) noexcept { ::SetEvent(handleOf(handle)); }

void StopToken::closeHandle(std::intptr_t handle) noexcept { ::CloseHandle(handleOf(handle)); }

void StopToken::waitForHandle(std::intptr_t handle, std::chrono::milliseconds limit) noexcept {
  ::WaitForSingleObject(handleOf(handle), static_cast<DWORD>(limit.count()));
}

}  // namespace platform
