// SPDX-License-Identifier: MIT
// Finds and loads the library for a host.
#pragma once

#include <filesystem>

#include "QXLibrary.h"

namespace hosts {

// Loads the file, or, without one, the library beside the running program; on Linux, where there is none,
// that in the folder lib beside the program's own. Throws std::runtime_error with a text for people: there is
// no such file, it is no library, it lacks an export, or its version does not fit these headers.
[[nodiscard]] qx::Exports openLibrary(const std::filesystem::path& fileOrEmpty = {});

}  // namespace hosts
