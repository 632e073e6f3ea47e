// SPDX-License-Identifier: MIT
#include "Src/RemotePath.h"

bool MayGoToServer(const char* name) noexcept {
  if (name == nullptr || IsSafeRemotePath(name)) return true;
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

bool BothGiven(const char* first, const char* second) noexcept {
  if (first != nullptr && *first != '\0' && second != nullptr && *second != '\0') return true;
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}
