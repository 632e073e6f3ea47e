// SPDX-License-Identifier: MIT
// What the library tells of a folder, as a list shows it. Any thread.
#pragma once

#include <vector>

#include "QXDirEntry.h"
#include "hosts/qxbrowse/lists/Items.h"

namespace browse {

std::vector<Item> itemsOf(const std::vector<QXDirEntry>& entries);

}  // namespace browse
