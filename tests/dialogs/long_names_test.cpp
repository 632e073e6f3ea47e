// SPDX-License-Identifier: MIT
// Long texts and large selections: each is a right answer or a clean false, and no entry is overrun.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/dialogs/DirFileTest.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::Driver;
using testing::ElementsAre;

class LongNames : public DirFileTest {
 protected:
  // Confirms a folder that is `size` characters long, in the edit that holds the current folder.
  void confirmFolder(std::size_t size) {
    confirmed = "C:\\" + std::string(size - 3, 'f');
    run({.mode = kListFolders}, [this](Driver& user, HWND dialog) {
      user.type(user.control(dialog, kFolderEdit), confirmed);
      user.press(dialog, IDOK);
    });
  }
  void expectCleanFailure() {
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.cancelled, 0);
    EXPECT_EQ(outcome.count, 0U);
    EXPECT_EQ(outcome.list, nullptr);
    EXPECT_EQ(outcome.path, folder()) << "what the host had in it";
  }
  void addFiles(int files) const {
    for (int i = 0; i < files; ++i) addFile("file_" + std::to_string(10000 + i) + ".txt");
  }

  std::string confirmed;
};

TEST_F(LongNames, FitUpTo255CharactersOfAFolder) {
  confirmFolder(255);
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), ElementsAre(confirmed));
  EXPECT_EQ(outcome.path, confirmed);
}

TEST_F(LongNames, FailCleanlyFor256CharactersOfAFolder) {
  confirmFolder(256);
  expectCleanFailure();
}

TEST_F(LongNames, FailCleanlyFor300CharactersOfAFolder) {
  confirmFolder(300);
  expectCleanFailure();
}

TEST_F(LongNames, FailCleanlyForAnEntryThatDoesNotFit) {
  const std::string inner = std::string(100, 'd');
  addFolder(inner);
  addFile(inner + "\\" + std::string(150, 'n'));
  std::snprintf(outcome.path, sizeof outcome.path, "%s", (folder() + "\\" + inner).c_str());
  runHere({}, [](Driver& user, HWND dialog) {
    user.selectAll(user.waitForList(dialog, 1));
    user.press(dialog, IDOK);
  });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.count, 0U);
  EXPECT_EQ(outcome.list, nullptr);
}

TEST_F(LongNames, LeaveAnInitialFolderOf255CharactersToTheDialog) {
  std::snprintf(outcome.path, sizeof outcome.path, "%s", ("C:\\" + std::string(252, 'x')).c_str());
  runHere({.mode = kListFolders}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  EXPECT_TRUE(outcome.result);
  EXPECT_TRUE(std::filesystem::is_directory(outcome.path)) << outcome.path;
}

using LargeFolder = LongNames;

WNDPROC g_view = nullptr;

LRESULT CALLBACK withoutItemChanges(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NOTIFY &&
      reinterpret_cast<const NMHDR*>(lParam)->code == static_cast<UINT>(LVN_ITEMCHANGED))
    return 0;
  return CallWindowProcA(g_view, window, message, wParam, lParam);
}

// The system's dialog makes a name of all selected items after each change of one: a thousand changes would
// take minutes.
void selectAllAtOnce(Driver& user, HWND list) {
  const HWND view = GetParent(list);
  g_view = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(view, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&withoutItemChanges)));
  user.selectAll(list);
  SetWindowLongPtrA(view, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_view));
}

TEST_F(LargeFolder, GivesASelectionOf1000Files) {
  addFiles(1000);
  run({}, [](Driver& user, HWND dialog) {
    selectAllAtOnce(user, user.waitForList(dialog, 1000));
    user.press(dialog, IDOK);
  });
  EXPECT_TRUE(outcome.result);
  ASSERT_EQ(outcome.count, 1000U);
  const auto entries = outcome.entries();
  EXPECT_TRUE(std::is_sorted(entries.begin(), entries.end()));
  EXPECT_EQ(entries.front(), folder() + "\\file_10000.txt");
  EXPECT_EQ(entries.back(), folder() + "\\file_10999.txt");
}

}  // namespace
