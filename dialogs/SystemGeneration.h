// SPDX-License-Identifier: MIT
// Which generation of Windows this is, as the system's version query reports it.
#pragma once

#include "framework/windows/windows_api.h"

using VersionQuery = BOOL(WINAPI*)(OSVERSIONINFOA*);

// Whether the system is of the NT family with major version 5 or later. Asks with the extended record (156
// bytes) and, where that is refused, with the plain one (148).
bool IsNewGeneration(VersionQuery query = GetVersionExA) noexcept;
