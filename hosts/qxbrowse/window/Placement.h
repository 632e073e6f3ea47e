// SPDX-License-Identifier: MIT
// What the window remembers from one run to the next, in a file of its own.
#pragma once

#include <filesystem>

#include "hosts/qxbrowse/lists/ListPane.h"
#include "hosts/qxbrowse/pane/QueueColumns.h"
#include "hosts/qxbrowse/window/Layout.h"

namespace browse {

struct Placement {
  RECT window{};  // empty: the system chooses
  bool isMaximized = false;
  Splits splits;
  std::array<PaneLook, 2> panes{};  // by Side
  QueueWidths queue{};
  bool isBroken = false;  // the file has something that nobody could have written there
};

// What is missing or makes no sense is as at the first time.
Placement readPlacement(const std::filesystem::path& file);
// Best effort: a file that cannot be written is no reason to bother anybody.
void writePlacement(const std::filesystem::path& file, const Placement& placement);

// The window moved into the screen as far as it has to be, and no larger than that.
RECT fitted(RECT window, const RECT& screen);

}  // namespace browse
