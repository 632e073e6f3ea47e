// SPDX-License-Identifier: MIT
#include "framework/platform/stop_token.h"

#include "framework/platform/last_error.h"
#include "framework/windows/windows_api.h"

namespace platform {

namespace {

HANDLE eventOf(std::intptr_t handle) noexcept { return reinterpret_cast<HANDLE>(handle); }

}  // namespace

std::intptr_t StopToken::makeHandle() noexcept {
  const LastErrorKeeper keeper;
  const HANDLE event = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
  return event != nullptr ? reinterpret_cast<std::intptr_t>(event) : kNoHandle;
}

void StopToken::signalHandle(std::intptr_t handle) noexcept { ::SetEvent(eventOf(handle)); }

void StopToken::closeHandle(std::intptr_t handle) noexcept { ::CloseHandle(eventOf(handle)); }

void StopToken::waitForHandle(std::intptr_t handle, std::chrono::milliseconds limit) noexcept {
  ::WaitForSingleObject(eventOf(handle), static_cast<DWORD>(limit.count()));
}

}  // namespace platform
