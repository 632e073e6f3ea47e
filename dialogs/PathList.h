// SPDX-License-Identifier: MIT
// The flat list of paths that a host gets: entries of a fixed size, and a spare one behind the last.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/BoundedText.h"

using PathList = std::unique_ptr<char[]>;

// One entry for each name, behind `folder` and a backslash unless the folder is empty. Null when an entry
// would not fit.
PathList MakePathList(const std::string& folder, const std::vector<std::string>& names);

// A folder without the separator at its end ("C:\" becomes "C:"), into `result`. False when it does not fit.
bool NormaliseFolder(const std::string& folder, HostPathText& result);
