// SPDX-License-Identifier: MIT
#include "tests/support/TemporaryFolder.h"

#include <windows.h>

namespace testing_support {

std::optional<std::string> temporaryVariable() {
  char value[MAX_PATH + 1];
  const DWORD length = GetEnvironmentVariableA("TMP", value, sizeof value);
  return length == 0 || length >= sizeof value ? std::nullopt : std::optional<std::string>(value);
}

void setTemporaryVariable(const std::optional<std::string>& value) {
  SetEnvironmentVariableA("TMP", value ? value->c_str() : nullptr);
}

}  // namespace testing_support
