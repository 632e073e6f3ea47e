// SPDX-License-Identifier: MIT
// Where passwords come from, so that none has to stand on a command line, which others can read.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "QXClient.h"

namespace hosts {

struct PasswordSources {
  std::string file = {};             // whose first line it is; "-" is the standard input; empty: none
  const char* variable = nullptr;    // of the environment, which counts where it is set; null: none
  std::filesystem::path netrc = {};  // empty: the user's own
  bool usesNetrc = true;
  bool asks = true;  // at the terminal
};

// There is no password. The text says what could have had one.
struct NoPassword : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Fills in what the login lacks, from the first source that has it, in the order of PasswordSources. Without
// a user that is who the netrc file names for the host, or the anonymous one, who needs no password. A file
// that others may read is refused, unless what it has is not secret. Throws NoPassword.
void completeLogin(qx::Login& login, const PasswordSources& sources);

}  // namespace hosts
