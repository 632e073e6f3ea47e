// SPDX-License-Identifier: MIT
// The system's HTML help control, found through the registry and loaded at the first call. What was found
// stays until the process ends, and so does a failure. Unguarded: the first calls must not race.
#pragma once

#include "framework/windows/windows_api.h"

// Calls the control with these arguments: its help window, or null, also when there is no control.
HWND CallHtmlHelp(HWND window, const char* file, UINT command, DWORD_PTR data) noexcept;
