// SPDX-License-Identifier: MIT
// A help control that shows nothing and remembers what it was asked.
#pragma once

#include "framework/windows/windows_api.h"

struct HelpCalls {
  unsigned count;
  HWND window;
  char file[64];
  UINT command;
  DWORD_PTR data;
};

// Exported by name: the calls of this library so far, the latest one's arguments.
using PfnStubHelpCalls = const HelpCalls* (*)();

// What the control answers to every call.
inline const HWND kHelpWindow = reinterpret_cast<HWND>(0x5A5A);
