// SPDX-License-Identifier: MIT
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>

namespace testing_support {

std::optional<std::string> temporaryVariable() {
  const char* value = std::getenv("TMPDIR");
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

void setTemporaryVariable(const std::optional<std::string>& value) {
  if (value) {
    ::setenv("TMPDIR", value->c_str(), 1);
  } else {
    ::unsetenv("TMPDIR");
  }
}

}  // namespace testing_support
