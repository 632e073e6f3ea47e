// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "framework/windows/windows_api.h"

// Whether a file or a directory has this name.
inline bool NamesExistingPath(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}
