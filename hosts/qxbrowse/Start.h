// SPDX-License-Identifier: MIT
// What the program needs before it has a window, and the boxes that tell what is missing.
#pragma once

#include <filesystem>
#include <functional>
#include <span>
#include <string>

#include "QXLibrary.h"

namespace browse {

// The command line: qxbrowse [--library FILE] [--sites FILE].
struct StartOptions {
  std::filesystem::path library;  // "": the one beside the program
  std::filesystem::path sites;    // "": the usual file
};

// `arguments` are those behind the program's name. Throws std::invalid_argument with the one that is wrong,
// in UTF-8.
StartOptions readOptions(std::span<const std::wstring> arguments);

struct Start {
  qx::Exports library;
  std::filesystem::path sites;
};

enum ExitCode { kEnded = 0, kNoLibrary = 1, kWrongUsage = 2 };

// Runs the program with what its command line asks for, and answers its exit code; where that cannot be had,
// tells the user why and answers one of those above.
int start(const std::function<int(const Start&)>& run);

}  // namespace browse
