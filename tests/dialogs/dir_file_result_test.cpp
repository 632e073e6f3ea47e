// SPDX-License-Identifier: MIT
// What the directory-or-file dialog hands back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogs/DirFileTest.h"

namespace {

using dialog_test::DirFileOptions;
using dialog_test::DirFileTest;
using dialog_test::Driver;
using testing::ElementsAre;
using testing::IsEmpty;

using DirFileResult = DirFileTest;

TEST_F(DirFileResult, IsOneEntryWithTheFolderWhenOnlyFoldersAreListed) {
  run({.mode = kListFolders, .files = false}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), ElementsAre(folder()));
  EXPECT_EQ(outcome.path, folder());
  EXPECT_EQ(outcome.cancelled, 0);
}

TEST_F(DirFileResult, IsTheFolderAloneWhenNothingIsSelected) {
  addFile("a.txt");
  run({}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), IsEmpty());
  EXPECT_NE(outcome.list, nullptr) << "the spare entry";
  EXPECT_EQ(outcome.path, folder());
}

TEST_F(DirFileResult, IsTheSelectedItemsInTheOrderOfTheList) {
  addFolder("sub");
  for (const char* name : {"a.txt", "b.txt", "c.txt"}) addFile(name);
  run({}, [](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 4);
    for (const char* name : {"c.txt", "sub", "a.txt"}) user.select(list, name);
    user.press(dialog, IDOK);
  });
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), ElementsAre(folder() + "\\sub", folder() + "\\a.txt", folder() + "\\c.txt"));
}

TEST_F(DirFileResult, IsNothingButTheDialogAfterACancel) {
  addFile("a.txt");
  run({}, [](Driver& user, HWND dialog) {
    user.select(user.waitForList(dialog, 1), "a.txt");
    user.press(dialog, IDCANCEL);
  });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.cancelled, 1);
  EXPECT_EQ(outcome.count, 0U);
  EXPECT_EQ(outcome.list, nullptr);
  EXPECT_NE(outcome.dialog, nullptr);
  EXPECT_EQ(g_nModuleRefs, 1U) << "until the dialog is freed";
}

// A host that frees what it was given freed a dialog that was up.
TEST_F(DirFileResult, HasItsDialogOnlyWhenThatIsOver) {
  void* meanwhile = this;
  run({}, [&](Driver& user, HWND dialog) {
    meanwhile = outcome.dialog;
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(meanwhile, nullptr);
  EXPECT_NE(outcome.dialog, nullptr);
}

TEST_F(DirFileResult, FollowsTheFolderThatTheUserOpens) {
  addFolder("sub");
  std::ofstream(scratch.path() / "sub" / "in.txt") << "in";
  run({}, [](Driver& user, HWND dialog) {
    user.doubleClick(user.waitForList(dialog, {"sub"}), "sub");
    user.select(user.waitForList(dialog, {"in.txt"}), "in.txt");
    user.press(dialog, IDOK);
  });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.path, folder() + "\\sub");
  EXPECT_THAT(outcome.entries(), ElementsAre(folder() + "\\sub\\in.txt"));
}

// It was the opened folder within itself: the old list goes with that still selected, and the new one has no
// selection that would replace it.
TEST_F(DirFileResult, IsTheOpenedFolderAloneWhenNothingIsSelectedInIt) {
  addFolder("sub");
  std::ofstream(scratch.path() / "sub" / "in.txt") << "in";
  run({}, [](Driver& user, HWND dialog) {
    user.doubleClick(user.waitForList(dialog, {"sub"}), "sub");
    (void)user.waitForList(dialog, {"in.txt"});
    user.press(dialog, IDOK);
  });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.path, folder() + "\\sub");
  EXPECT_EQ(outcome.count, 0U);
}

// The drive keeps its backslash, and the one in front of a name follows it.
TEST_F(DirFileResult, IsTheItemsOfADrive) {
  std::snprintf(outcome.path, sizeof outcome.path, "C:\\");
  runHere({}, [](Driver& user, HWND dialog) {
    user.select(user.waitForList(dialog, 1), "windows");
    user.press(dialog, IDOK);
  });
  EXPECT_TRUE(outcome.result);
  EXPECT_STREQ(outcome.path, "C:\\");
  EXPECT_THAT(outcome.entries(), ElementsAre("C:\\\\windows"));
}

// A WM_QUIT was an OK without a folder.
TEST_F(DirFileResult, IsACancelWhenTheHostQuitsMeanwhile) {
  const DWORD thread = GetCurrentThreadId();
  run({}, [thread](Driver&, HWND) { PostThreadMessageA(thread, WM_QUIT, 5, 0); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.cancelled, 1);
  EXPECT_EQ(outcome.count, 0U);
  EXPECT_EQ(outcome.path, folder());
  MSG quit{};
  ASSERT_TRUE(PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "is still to end the host's loop";
  EXPECT_EQ(quit.wParam, 5U);
}

TEST_F(DirFileResult, IsTheFolderThatIsTypedIntoTheHiddenEdit) {
  run({.mode = kListFolders}, [](Driver& user, HWND dialog) {
    user.type(user.control(dialog, kFolderEdit), "\\\\server\\share");
    user.press(dialog, IDOK);
  });
  EXPECT_THAT(outcome.entries(), ElementsAre("\\\\server\\share"));
}

TEST_F(DirFileResult, IsTheFolderShownWhenTheHiddenEditIsEmpty) {
  run({.mode = kListFolders}, [](Driver& user, HWND dialog) {
    user.type(user.control(dialog, kFolderEdit), "");
    user.press(dialog, IDOK);
  });
  EXPECT_THAT(outcome.entries(), ElementsAre(folder()));
}

TEST_F(DirFileResult, IsTheDriveWithoutItsBackslashForARoot) {
  run({.mode = kListFolders}, [](Driver& user, HWND dialog) {
    user.type(user.control(dialog, kFolderEdit), "C:");
    user.press(dialog, IDOK);
  });
  EXPECT_THAT(outcome.entries(), ElementsAre("C:"));
}

// A confirmed "C:\" gets the appended backslash: both are one doubled separator, of which one goes.
TEST_F(DirFileResult, KeepsOneBackslashOfADriveThatIsShown) {
  std::snprintf(outcome.path, sizeof outcome.path, "C:\\");
  runHere({.mode = kListFolders}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  EXPECT_THAT(outcome.entries(), ElementsAre("C:\\"));
}

TEST_F(DirFileResult, HasItsEntriesInAZeroedBlockWithASpareOne) {
  addFile("a.txt");
  run({}, [](Driver& user, HWND dialog) {
    user.select(user.waitForList(dialog, 1), "a.txt");
    user.press(dialog, IDOK);
  });
  ASSERT_EQ(outcome.count, 1U);
  EXPECT_EQ(std::string(outcome.list + kHostPathCapacity, kHostPathCapacity),
            std::string(kHostPathCapacity, '\0'));
}

TEST_F(DirFileResult, CountsTheDialogUntilItIsFreed) {
  run({}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  EXPECT_EQ(g_nModuleRefs, 1U);
  EXPECT_TRUE(FreeFileDialog(outcome.dialog));
  outcome.dialog = nullptr;
  EXPECT_EQ(g_nModuleRefs, 0U);
  EXPECT_EQ(g_listHook, nullptr);
  EXPECT_FALSE(FreeFileDialog(nullptr));
}

// They are module-wide, and nothing replaces them where nothing is selected.
TEST_F(DirFileResult, HasNoNamesOfTheDialogBefore) {
  addFile("a.txt");
  run({}, [](Driver& user, HWND dialog) {
    user.select(user.waitForList(dialog, 1), "a.txt");
    user.press(dialog, IDOK);
  });
  EXPECT_EQ(outcome.count, 1U);
  EXPECT_TRUE(FreeFileDialog(outcome.dialog));
  run({}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), IsEmpty());
}

}  // namespace
