// SPDX-License-Identifier: MIT
// The filter of the directory-or-file dialog's list. It runs when somebody asks the list how many of its
// items are selected.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

#include "tests/dialogs/DirFileTest.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::Driver;
using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;

class DirFileFilter : public DirFileTest {
 protected:
  // What the list shows at first and after each of `queries` queries.
  std::vector<Names> shownAfterQueries(std::uint32_t mode, std::size_t items, int queries) {
    std::vector<Names> shown;
    run({.mode = mode}, [&](Driver& user, HWND dialog) {
      const HWND list = user.waitForList(dialog, items);
      shown.push_back(user.items(list));
      for (int i = 0; i < queries; ++i) {
        user.send(list, LVM_GETSELECTEDCOUNT);
        shown.push_back(user.items(list));
      }
      user.press(dialog, IDCANCEL);
    });
    return shown;
  }
};

// After a deletion the walk goes on at the second item: the folder that moved to the front stays until the
// next query.
TEST_F(DirFileFilter, CleansAListOfTwoFoldersInFrontOfBoth) {
  for (const char* name : {"A", "B"}) addFolder(name);
  for (const char* name : {"x.txt", "y.txt"}) addFile(name);
  EXPECT_THAT(shownAfterQueries(kListFiles, 4, 2),
              ElementsAre(ElementsAre("A", "B", "x.txt", "y.txt"), ElementsAre("B", "x.txt", "y.txt"),
                          ElementsAre("x.txt", "y.txt")));
}

TEST_F(DirFileFilter, FindsAFolderBehindTheFirstOneInOnePass) {
  for (const char* name : {"A", "B", "C"}) addFolder(name);
  EXPECT_THAT(shownAfterQueries(kListFiles, 3, 2),
              ElementsAre(ElementsAre("A", "B", "C"), ElementsAre("B"), IsEmpty()));
}

TEST_F(DirFileFilter, RemovesTheFilesWhereFoldersAreWanted) {
  for (const char* name : {"A", "B"}) addFolder(name);
  for (const char* name : {"x.txt", "y.txt"}) addFile(name);
  EXPECT_THAT(shownAfterQueries(kListFolders, 4, 1),
              ElementsAre(ElementsAre("A", "B", "x.txt", "y.txt"), ElementsAre("A", "B")));
}

TEST_F(DirFileFilter, LeavesAllItemsInOtherModes) {
  addFolder("A");
  addFile("x.txt");
  EXPECT_THAT(shownAfterQueries(0, 2, 1), ElementsAre(ElementsAre("A", "x.txt"), ElementsAre("A", "x.txt")));
}

TEST_F(DirFileFilter, CountsANameThatIsNotFoundAsAFolder) {
  addFile("gone.txt");
  addFile("here.txt");
  Names shown;
  run({.mode = kListFiles, .flags = 0}, [&](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 2);
    // A list that watches its folder would drop the name by itself.
    LVITEMA item{};
    char text[] = "never there";
    item.pszText = text;
    user.send(list, LVM_SETITEMTEXTA, 0, reinterpret_cast<LPARAM>(&item));
    user.send(list, LVM_GETSELECTEDCOUNT);
    shown = user.items(list);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_THAT(shown, ElementsAre("here.txt"));
}

TEST_F(DirFileFilter, LooksAtAnItemThatChangesLater) {
  for (const char* name : {"x.txt", "y.txt"}) addFile(name);
  Names before, after;
  run({.mode = kListFiles, .flags = 0}, [&](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 2);
    user.send(list, LVM_GETSELECTEDCOUNT);
    before = user.items(list);
    LVITEMA item{};
    char text[] = "never there";
    item.pszText = text;
    user.send(list, LVM_SETITEMTEXTA, 1, reinterpret_cast<LPARAM>(&item));
    user.send(list, LVM_GETSELECTEDCOUNT);
    after = user.items(list);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_THAT(before, ElementsAre("x.txt", "y.txt"));
  EXPECT_THAT(after, ElementsAre("x.txt"));
}

// Deleting a selected item asks the list for its selected count once more, before the item has gone.
TEST_F(DirFileFilter, NeverRemovesAWantedItemBehindASelectedOne) {
  addFolder("A");
  for (const char* name : {"x.txt", "y.txt", "z.txt"}) addFile(name);
  Names shown;
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 4);
    user.select(list, "A");
    shown = user.items(list);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_THAT(shown, ElementsAre("x.txt", "y.txt", "z.txt"));
}

// The first folder goes before, and the one that has moved to the front is still to be looked at.
TEST_F(DirFileFilter, NeverRemovesAWantedItemBehindASelectedOneFurtherDown) {
  for (const char* name : {"A", "B", "C"}) addFolder(name);
  for (const char* name : {"x.txt", "y.txt", "z.txt"}) addFile(name);
  Names shown;
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 6);
    user.select(list, "C");
    user.send(list, LVM_GETSELECTEDCOUNT);
    shown = user.items(list);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_THAT(shown, ElementsAre("x.txt", "y.txt", "z.txt"));
}

TEST_F(DirFileFilter, KeepsEveryWantedItemWhenAllAreSelected) {
  for (const char* name : {"A", "B", "C"}) addFolder(name);
  for (const char* name : {"x.txt", "y.txt", "z.txt"}) addFile(name);
  Names shown;
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 6);
    user.selectAll(list);
    for (int i = 0; i < 3; ++i) user.send(list, LVM_GETSELECTEDCOUNT);
    shown = user.items(list);
    user.selectAll(list);
    user.press(dialog, IDOK);
  });
  EXPECT_THAT(shown, ElementsAre("x.txt", "y.txt", "z.txt"));
  EXPECT_THAT(outcome.entries(),
              ElementsAre(folder() + "\\x.txt", folder() + "\\y.txt", folder() + "\\z.txt"));
}

// One reading of the folder tells all that the items are: this one, hidden, is none of them.
TEST_F(DirFileFilter, ReadsTheFolderAtOnce) {
  for (const char* name : {"hidden.txt", "x.txt", "y.txt"}) addFile(name);
  ASSERT_TRUE(SetFileAttributesA((folder() + "\\hidden.txt").c_str(), FILE_ATTRIBUTE_HIDDEN));
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    user.send(user.waitForList(dialog, {"x.txt", "y.txt"}), LVM_GETSELECTEDCOUNT);
    std::filesystem::remove(scratch.path() / "hidden.txt");
    EXPECT_FALSE(g_dirFileState.items.IsDirectory(L"hidden.txt"));
    user.press(dialog, IDCANCEL);
  });
}

// What goes in front of it would have its number on another item.
TEST_F(DirFileFilter, LeavesTheFocusToItsItem) {
  for (const char* name : {"A", "B", "C"}) addFolder(name);
  for (const char* name : {"x.txt", "y.txt", "z.txt"}) addFile(name);
  std::string focused;
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 6);
    user.select(list, "y.txt");
    user.send(list, LVM_GETSELECTEDCOUNT);
    const auto index = user.send(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    if (index >= 0) focused = user.items(list).at(static_cast<std::size_t>(index));
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(focused, "y.txt");
}

std::atomic<int> g_countQueries = 0;

LRESULT CALLBACK countQueries(int code, WPARAM wParam, LPARAM lParam) {
  if (reinterpret_cast<const CWPSTRUCT*>(lParam)->message == LVM_GETSELECTEDCOUNT) ++g_countQueries;
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

// Asking how many items were selected filtered the list while it went away. Hooks see what the one that was
// installed behind them passes on.
TEST_F(DirFileFilter, IsNotRunWhenTheListGoes) {
  addFile("x.txt");
  const HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &countQueries, nullptr, GetCurrentThreadId());
  int before = 0;
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    user.select(user.waitForList(dialog, 1), "x.txt");
    before = g_countQueries;
    user.press(dialog, IDOK);
  });
  UnhookWindowsHookEx(hook);
  EXPECT_GT(before, 0) << "the dialog's hook has passed them on";
  EXPECT_EQ(g_countQueries, before);
  EXPECT_EQ(outcome.count, 1U);
}

// Item names count from the current directory, which follows the folder shown.
TEST_F(DirFileFilter, WorksInAFolderThatTheUserOpens) {
  addFolder("sub\\inner");
  std::ofstream(scratch.path() / "sub" / "in.txt") << "in";
  Names shown;
  run({.mode = kListFolders}, [&](Driver& user, HWND dialog) {
    user.doubleClick(user.waitForList(dialog, {"sub"}), "sub");
    const HWND list = user.waitForList(dialog, 2);
    user.waitUntil("the files to go", [&] {
      user.send(list, LVM_GETSELECTEDCOUNT);
      shown = user.items(list);
      return shown == Names{"inner"};
    });
    user.press(dialog, IDCANCEL);
  });
  EXPECT_THAT(shown, ElementsAre("inner"));
}

// The hook stays until the dialog is freed, and the host has lists of its own on the thread.
TEST_F(DirFileFilter, LeavesListsOfTheHostAlone) {
  const HWND list = CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | LVS_LIST, 0, 0, 100, 100, nullptr,
                                    nullptr, GetModuleHandleA(nullptr), nullptr);
  ASSERT_NE(list, nullptr);
  LVITEMA item{};
  char text[] = "a row of the host";
  item.mask = LVIF_TEXT | LVIF_STATE;
  item.pszText = text;
  item.state = item.stateMask = LVIS_SELECTED;
  SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    user.send(list, LVM_GETSELECTEDCOUNT);
    user.press(dialog, IDOK);
  });
  EXPECT_EQ(SendMessageA(list, LVM_GETSELECTEDCOUNT, 0, 0), 1);
  EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 1);
  DestroyWindow(list);
  EXPECT_EQ(g_dirFileState.selectedNames.size(), 0U);
}

}  // namespace
