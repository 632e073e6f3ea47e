// SPDX-License-Identifier: MIT
#include "dialogs/SystemGeneration.h"

static_assert(sizeof(OSVERSIONINFOEXA) == 156 && sizeof(OSVERSIONINFOA) == 148);

bool IsNewGeneration(VersionQuery query) noexcept {
  OSVERSIONINFOEXA extended{};
  auto* const info = reinterpret_cast<OSVERSIONINFOA*>(&extended);  // the extended record starts as the plain
  info->dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXA);
  if (!query(info)) {
    info->dwOSVersionInfoSize = sizeof(OSVERSIONINFOA);
    if (!query(info)) return false;
  }
  return info->dwPlatformId == VER_PLATFORM_WIN32_NT && info->dwMajorVersion >= 5;
}
