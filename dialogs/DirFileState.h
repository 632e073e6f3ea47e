// SPDX-License-Identifier: MIT
// What the directory-or-file dialog keeps module-wide: its hooks are plain functions. So one such dialog can
// work at a time, on one thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "framework/windows/windows_api.h"

class CDirFileOpen;

inline constexpr std::uint32_t kListFiles = 2;    // the filter removes folders
inline constexpr std::uint32_t kListFolders = 3;  // the filter removes files

// Controls of the system's dialog.
inline constexpr int kFileNameEdit = 1152;
inline constexpr int kFileNameLabel = 1090;
inline constexpr int kFileTypeLabel = 1089;
inline constexpr int kFileTypeBox = 1136;
inline constexpr int kListArea = 1120;
// Ours: follows the current folder, hidden.
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
