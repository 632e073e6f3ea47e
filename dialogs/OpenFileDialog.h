// SPDX-License-Identifier: MIT
// The function behind DoOpenFileDialog.
#pragma once

#include <cstdint>

#include "dialogs/HostOutput.h"

// Starts with the file name in output.pszPath; `reserved` must be given. True when the user confirmed. The
// host owns the path list then.
bool OpenFileDialog(const void* const (&reserved)[3], std::uint32_t flags, const HostOutput& output);
