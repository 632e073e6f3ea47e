// SPDX-License-Identifier: MIT
// The shell's folder browser, as its users know it.
#pragma once

#include <string>

#include "tests/dialogs/Driver.h"
// Only now:
#include <shlobj.h>

inline constexpr int kTree = 14145;
inline constexpr int kInstruction = 14146;
inline constexpr int kStatusText = 14147;  // hidden in the newer dialog
inline constexpr int kNewFolderButton = 14150;

// Waits until `folder` is the selected one. The dialog is on the screen already while it opens its way down
// there, and an OK in that time takes whatever is selected just then.
inline void waitForFolder(const dialog_test::Driver& user, HWND dialog, const std::string& folder) {
  user.waitUntil("the folder " + folder,
                 [&] { return user.textOf(user.control(dialog, kStatusText)) == folder; });
}

inline void selectFolder(const dialog_test::Driver& user, HWND dialog, const std::string& folder) {
  user.send(dialog, BFFM_SETSELECTIONA, TRUE, reinterpret_cast<LPARAM>(folder.c_str()));
  waitForFolder(user, dialog, folder);
}
