// SPDX-License-Identifier: MIT
// The question before something is deleted. Pure.
#pragma once

#include <string>
#include <vector>

#include "hosts/qxbrowse/lists/Items.h"

namespace browse {

// How many there are, the first ten by their names, and what becomes of them.
std::wstring deleteQuestion(const std::vector<Place>& places, Side side);

}  // namespace browse
