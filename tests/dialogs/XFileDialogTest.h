// SPDX-License-Identifier: MIT
// Shows a CXFileDialog in a scratch folder, with a history of its own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "dialogs/XFileDialog.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/FileDialogStandIn.h"
#include "tests/dialogs/FolderTest.h"
#include "tests/dialogs/ProfileStore.h"

// What the driver finds of the dialog that is up.
struct ShownFileDialog {
  explicit ShownFileDialog(const dialog_test::Driver& user)
      : dialog(user.waitForDialog()),
        inner(user.child(dialog, "#32770")),
        history(user.control(inner, 1002)) {}

  // On the screen.
  [[nodiscard]] RECT rectOf(int id) const {
    HWND window = ::GetDlgItem(inner, id);
    if (window == nullptr) window = ::GetDlgItem(dialog, id);
    RECT rect{};
    GetWindowRect(window, &rect);
    return rect;
  }
  // Of the thread that shows the dialog.
  [[nodiscard]] HWND focus() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
    return info.hwndFocus;
  }

  const HWND dialog;
  const HWND inner;    // the template's window
  const HWND history;  // its combo box
};

class XFileDialogTest : public dialog_test::FolderTest {
 protected:
  using Driver = dialog_test::Driver;
  using User = std::function<void(Driver&, const ShownFileDialog&)>;

  XFileDialogTest() {
    addFolder("start\\below");
    addFolder("other");
    for (const char* file : {"start\\a.txt", "start\\b.txt", "other\\c.txt"}) addFile(file);
  }

  // Shows `shown` in the folder `start`; the user cancels what is still up after `user`.
  int run(CXFileDialog& shown, const User& user) {
    shown.m_ofn.lpstrInitialDir = start.c_str();
    const FileDialogStandIn plainSize(&showWithPlainSize);
    return dialog_test::drive([&shown] { return shown.DoModal(); },
                              [&user](Driver& driver) {
                                const ShownFileDialog up(driver);
                                user(driver, up);
                                if (IsWindowVisible(up.dialog)) driver.press(up.dialog, IDCANCEL);
                              });
  }

  const ProfileStore profile{"FolderHistory"};
  const std::string start = scratch.file("start");
  const std::string other = scratch.file("other");
  const std::string gone = scratch.file("gone");
};
