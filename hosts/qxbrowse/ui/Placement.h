// SPDX-License-Identifier: MIT
// What the window remembers from one run to the next, in a file of its own.
#pragma once

#include <filesystem>

#include "hosts/qxbrowse/window/Layout.h"

namespace browse {

struct Placement {
  RECT window{};  // empty: the system chooses
  bool isMaximized = false;
  Splits splits;
};

// What is missing or makes no sense is as at the first time. A window that no screen shows any more is one of
// these.
Placement readPlacement(const std::filesystem::path& file);
// Best effort: a file that cannot be written is no reason to bother anybody.
void writePlacement(const std::filesystem::path& file, const Placement& placement);

}  // namespace browse
