// SPDX-License-Identifier: MIT
#include "framework/platform/process.h"

#include <mutex>

#include "framework/platform/last_error.h"
#include "framework/windows/windows_api.h"
// After the Windows headers, which it builds on.
#include <commctrl.h>

namespace platform {

void* processModule() noexcept { return ::GetModuleHandleA(nullptr); }

void initCommonControls() noexcept {
  // Loading the control library registers the classic classes by itself; the mask adds one set to them.
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_INTERNET_CLASSES};
  ::InitCommonControlsEx(&classes);
}

bool startSockets() noexcept {
  // A refusal is not kept: the next call asks again.
  static std::mutex mutex;
  static bool started = false;
  const std::lock_guard lock(mutex);
  if (!started) {
    WSADATA data;
    const int error = ::WSAStartup(MAKEWORD(2, 2), &data);
    if (error != 0) {
      setLastError(static_cast<std::uint32_t>(error));
      return false;
    }
    started = true;
  }
  return true;
}

}  // namespace platform
