// SPDX-License-Identifier: MIT
// What the directory-or-file dialog keeps module-wide: its hooks are plain functions. So one such dialog can
// work at a time, on one thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dialogs/SystemControls.h"
#include "framework/windows/windows_api.h"

class CDirFileOpen;

inline constexpr std::uint32_t kListFiles = 2;    // the filter removes folders
inline constexpr std::uint32_t kListFolders = 3;  // the filter removes files

// Beside the system's controls: follows the current folder, hidden.
inline constexpr int kFolderEdit = 102;

struct DirFileState {
  std::uint32_t filter = 0;
  std::vector<std::string> selectedNames;
  HHOOK callHook = nullptr;
  WNDPROC previousProcedure = nullptr;  // of the dialog's window
  HWND window = nullptr;                // the dialog's, while it is up
  CDirFileOpen* dialog = nullptr;       // its object
  bool filtering = false;
};

inline DirFileState g_dirFileState;
