// SPDX-License-Identifier: MIT
// The threads of this process.
#pragma once

#include <vector>

#include "framework/windows/windows_api.h"

namespace testing_support {

std::vector<DWORD> threadIds();

}  // namespace testing_support
