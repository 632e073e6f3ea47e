// SPDX-License-Identifier: MIT
// A scratch folder that is the process's temporary folder while the object lives. One at a time, and only
// while no other thread asks for the environment.
#pragma once

#include <optional>
#include <string>

#include "tests/support/ScratchFolder.h"

namespace testing_support {

// The environment variable that names the temporary folder. None: it is not set.
std::optional<std::string> temporaryVariable();
void setTemporaryVariable(const std::optional<std::string>& value);

class TemporaryFolder : public ScratchFolder {
 public:
  TemporaryFolder() : before_(temporaryVariable()) { setTemporaryVariable(path().string()); }
  ~TemporaryFolder() { setTemporaryVariable(before_); }

 private:
  const std::optional<std::string> before_;
};

}  // namespace testing_support
