// SPDX-License-Identifier: MIT
// qxftp without main(): the command line and what comes out of it.
#pragma once

namespace qxftp {

// The exit code (Outcome.h).
[[nodiscard]] int runProgram(int count, const char* const* words);

}  // namespace qxftp
