// SPDX-License-Identifier: MIT
// Paths of either side.
#pragma once

#include <string>
#include <string_view>

#include "hosts/qxbrowse/lists/Items.h"
#include "hosts/qxbrowse/ui/Names.h"

namespace browse {

inline std::wstring pathOn(Side side, std::wstring_view folder, std::wstring_view name) {
  return side == Side::local ? localPath(folder, name) : serverPath(folder, name);
}

// The folder itself where there is none above it; above a drive are all drives, L"".
inline std::wstring parentOn(Side side, std::wstring_view folder) {
  return side == Side::local ? localParent(folder) : serverParent(folder);
}

}  // namespace browse
