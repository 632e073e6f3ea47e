// SPDX-License-Identifier: MIT
// What the directory-or-file dialog keeps module-wide: its hooks are plain functions. So such dialogs can
// work on one thread only.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/ShownItems.h"
#include "dialogs/SystemControls.h"
#include "framework/windows/windows_api.h"

class CDirFileOpen;

inline constexpr std::uint32_t kListFiles = 2;    // the filter removes folders
inline constexpr std::uint32_t kListFolders = 3;  // the filter removes files

// Beside the system's controls: follows the current folder, hidden.
inline constexpr int kFolderEdit = 102;

struct DirFileState {
  static constexpr int kAll = std::numeric_limits<int>::max();

  std::uint32_t filter = 0;
  std::vector<std::wstring> selectedNames;
  ShownItems items;   // of the list
  int unseen = kAll;  // so many of them, from the first one on, the filter has yet to look at
  WNDPROC previousProcedure = nullptr;  // of the dialog's window
  HWND window = nullptr;                // the dialog's, while it is up
  CDirFileOpen* dialog = nullptr;       // its object
  DirFileState* below = nullptr;        // of the dialog that was up when this one was opened
};

// Of the innermost dialog.
inline DirFileState g_dirFileState;

// One for the lists of all of them.
inline HHOOK g_listHook = nullptr;

// The innermost state that `holds` is true for; null when there is none.
template <typename Predicate>
DirFileState* FindDirFileState(const Predicate& holds) {
  DirFileState* state = &g_dirFileState;
  while (state != nullptr && !holds(*state)) state = state->below;
  return state;
}

// Of the dialog that has this window; null when none has.
inline DirFileState* DirFileStateOf(HWND window) noexcept {
  return FindDirFileState([window](const DirFileState& state) { return state.window == window; });
}

// The dialog has no owner, so the windows of the host stay enabled: its user may open another one over the
// one that is up. That has the state for itself, until this scope is left.
class DirFileScope {
 public:
  DirFileScope() noexcept {
    if (g_dirFileState.window == nullptr) return;
    m_below = std::exchange(g_dirFileState, {});
    g_dirFileState.below = &*m_below;
  }
  ~DirFileScope() {
    if (m_below) g_dirFileState = std::move(*m_below);
  }
  DirFileScope(const DirFileScope&) = delete;
  DirFileScope& operator=(const DirFileScope&) = delete;

 private:
  std::optional<DirFileState> m_below;
};
