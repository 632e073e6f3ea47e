// SPDX-License-Identifier: MIT
// Windows' handles behind the numbers that the platform headers keep them as.
#pragma once

#include <cstdint>

#include "framework/windows/windows_api.h"

namespace platform {

inline HANDLE handleOf(std::intptr_t number) noexcept { return reinterpret_cast<HANDLE>(number); }

}  // namespace platform
