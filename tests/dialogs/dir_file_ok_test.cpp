// SPDX-License-Identifier: MIT
// The OK of the directory-or-file dialog: what it takes, and the box about a bad folder.
#include <gtest/gtest.h>

#include <utility>

#include "dialogs/OkInterceptor.h"
#include "tests/dialogs/DirFileTest.h"

namespace {

using dialog_test::Driver;

using DirFileOk = dialog_test::DirFileTest;

TEST_F(DirFileOk, SaysThatAFolderIsInvalidAndStaysOpen) {
  dialog_test::Box box;
  bool stillThere = false;
  run({.mode = kListFolders}, [&](Driver& user, HWND dialog) {
    user.type(user.control(dialog, kFolderEdit), "C:\\\\Temp");
    user.press(dialog, IDOK);
    box = user.answerBox(dialog);
    stillThere = IsWindowVisible(dialog);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(box.text, "Invalid Folder");
  EXPECT_EQ(box.caption, "Error") << "the system's";
  EXPECT_EQ(box.icon, LoadIconA(nullptr, IDI_HAND));
  EXPECT_EQ(box.buttons, 1);
  EXPECT_TRUE(stillThere);
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.cancelled, 1);
}

WNDPROC g_interceptor = nullptr;

LRESULT CALLBACK withoutFolder(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == CDM_GETFOLDERPATH) return -1;
  return CallWindowProcA(g_interceptor, window, message, wParam, lParam);
}

TEST_F(DirFileOk, TakesNoNoticeOfOkWithoutAnyFolder) {
  bool stillThere = false;
  run({}, [&](Driver& user, HWND dialog) {
    user.type(user.control(dialog, kFolderEdit), "");
    g_interceptor = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(dialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&withoutFolder)));
    user.send(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED));
    stillThere = IsWindowVisible(dialog);
    SetWindowLongPtrA(dialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_interceptor));
    user.press(dialog, IDCANCEL);
  });
  EXPECT_TRUE(stillThere);
  EXPECT_EQ(outcome.cancelled, 1);
}

// Such a press went to an object that is not there.
TEST_F(DirFileOk, LeavesAPressWithoutADialogObjectToTheSystem) {
  addFolder("sub\\inner");
  run({}, [](Driver& user, HWND dialog) {
    (void)user.waitForList(dialog, {"sub"});
    user.typeName(dialog, "sub");
    CDirFileOpen* const object = std::exchange(g_dirFileState.dialog, nullptr);
    user.press(dialog, IDOK);
    (void)user.waitForList(dialog, {"inner"});
    g_dirFileState.dialog = object;
    user.press(dialog, IDCANCEL);
  });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.cancelled, 1);
}

TEST(DoubledBackslash, CountsFromTheSecondCharacterOn) {
  for (const char* good : {"", "\\", "\\\\", "\\\\server\\share", "C:\\Temp", "C:\\Temp\\"})
    EXPECT_FALSE(HasDoubledBackslash(good)) << good;
  for (const char* bad : {"C:\\\\Temp", "C:\\Temp\\\\", "\\\\\\server", "a\\\\"})
    EXPECT_TRUE(HasDoubledBackslash(bad)) << bad;
}

// Only a pressed button counts.
TEST_F(DirFileOk, LeavesOtherNotificationsOfItsOkToTheSystem) {
  bool stillThere = false;
  run({}, [&](Driver& user, HWND dialog) {
    user.send(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_SETFOCUS));
    stillThere = IsWindowVisible(dialog);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_TRUE(stillThere);
  EXPECT_EQ(outcome.cancelled, 1);
}

}  // namespace
