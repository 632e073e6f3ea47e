// SPDX-License-Identifier: MIT
#include "framework/platform/modal_message.h"

#include "framework/windows/windows_api.h"

namespace platform {

void showModalMessage(const char* text, const char* caption) noexcept {
  // A null caption would be shown as "Error".
  ::MessageBoxA(nullptr, text != nullptr ? text : "", caption != nullptr ? caption : "", MB_OK | MB_TOPMOST);
}

}  // namespace platform
