// SPDX-License-Identifier: MIT
// The names behind what the directory-or-file dialog shows: files whose extensions the shell hides, and
// names that the code page lacks characters of.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/ListItems.h"
#include "dialogs/ShownItems.h"
#include "tests/dialogs/DirFileTest.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::Driver;
using dialog_test::FolderTest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Names = std::vector<std::string>;

// The shell hides the extensions it knows, as it does by default on Windows; for this process alone.
class HiddenExtensions : public DirFileTest {
 protected:
  HiddenExtensions() {
    EXPECT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, kKey, &m_user), ERROR_SUCCESS);
    RegOverridePredefKey(HKEY_CURRENT_USER, m_user);
    const DWORD hide = 1;
    RegSetKeyValueA(HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced",
                    "HideFileExt", REG_DWORD, &hide, sizeof hide);
  }
  ~HiddenExtensions() override {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(m_user);
    RegDeleteTreeA(HKEY_CURRENT_USER, kKey);
  }

  // Confirms all of so many items; how they were shown.
  Names chooseAll(std::size_t count) {
    Names shown;
    run({}, [&](Driver& user, HWND dialog) {
      const HWND list = user.waitForList(dialog, count);
      shown = user.items(list);
      user.selectAll(list);
      user.press(dialog, IDOK);
    });
    return shown;
  }

 private:
  static constexpr const char* kKey = "Software\\ZRM_QXKT32x64 hidden extensions";
  HKEY m_user = nullptr;
};

// They were names of nothing.
TEST_F(HiddenExtensions, AreThereInTheResult) {
  for (const char* name : {"a.txt", "b.doc", "plain"}) addFile(name);
  ASSERT_THAT(chooseAll(3), UnorderedElementsAre("a", "b", "plain"));
  EXPECT_THAT(outcome.entries(),
              UnorderedElementsAre(folder() + "\\a.txt", folder() + "\\b.doc", folder() + "\\plain"));
}

TEST_F(HiddenExtensions, TellItemsApartThatAreShownAlike) {
  addFolder("same");
  for (const char* name : {"same.doc", "same.txt"}) addFile(name);
  ASSERT_THAT(chooseAll(3), ElementsAre("same", "same", "same"));
  EXPECT_THAT(outcome.entries(),
              UnorderedElementsAre(folder() + "\\same", folder() + "\\same.doc", folder() + "\\same.txt"));
}

// Files that were names of nothing went from the list as folders, and stayed where folders are wanted.
TEST_F(HiddenExtensions, LeaveFilesToBeFiles) {
  addFolder("sub");
  addFolder("same");
  for (const char* name : {"a.txt", "b.doc", "same.txt"}) addFile(name);
  Names files, folders;
  for (const auto& [mode, shown] : {std::pair{kListFiles, &files}, std::pair{kListFolders, &folders}}) {
    run({.mode = mode}, [into = shown](Driver& user, HWND dialog) {
      const HWND list = user.waitForList(dialog, 5);
      for (int i = 0; i < 3; ++i) user.send(list, LVM_GETSELECTEDCOUNT);
      *into = user.items(list);
      user.press(dialog, IDCANCEL);
    });
    EXPECT_TRUE(FreeFileDialog(std::exchange(outcome.dialog, nullptr)));
  }
  EXPECT_THAT(files, UnorderedElementsAre("a", "b", "same"));
  EXPECT_THAT(folders, UnorderedElementsAre("same", "sub"));
}

TEST_F(HiddenExtensions, AreThereInAFolderThatTheUserOpens) {
  addFolder("sub");
  addFile("sub\\in.txt");
  run({}, [](Driver& user, HWND dialog) {
    user.doubleClick(user.waitForList(dialog, {"sub"}), "sub");
    user.select(user.waitForList(dialog, {"in"}), "in");
    user.press(dialog, IDOK);
  });
  EXPECT_THAT(outcome.entries(), ElementsAre(folder() + "\\sub\\in.txt"));
}

// A list that the shell says nothing about.
class UnknownItems : public FolderTest {
 protected:
  UnknownItems() { std::filesystem::current_path(scratch.path()); }
  ~UnknownItems() override { DestroyWindow(list); }

  std::wstring nameOf(const wchar_t* text) {
    LVITEMW item{};
    std::wstring copy = text;
    item.mask = LVIF_TEXT;
    item.pszText = copy.data();
    SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return ShownItems().NameOf(list, 0);
  }

  const HWND list = CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | LVS_LIST, 0, 0, 100, 100, nullptr,
                                    nullptr, GetModuleHandleA(nullptr), nullptr);
};

TEST_F(UnknownItems, AreTheOneFileOfTheirNameWithAnyExtension) {
  for (const char* name : {"one.txt", "two.txt", "two.doc", "there", "there.txt"}) addFile(name);
  addFolder("folder.d");
  EXPECT_EQ(nameOf(L"one"), L"one.txt");
  EXPECT_EQ(nameOf(L"two"), L"two") << "either may be meant";
  EXPECT_EQ(nameOf(L"there"), L"there") << "it names something";
  EXPECT_EQ(nameOf(L"folder"), L"folder") << "a folder is shown in full";
  EXPECT_EQ(nameOf(L"none"), L"none");
}

// Each look at a name costs a way to the disk, or to a server.
TEST_F(UnknownItems, AreRememberedAsWhatTheyWereFoundToBe) {
  addFile("x.txt");
  ShownItems items;
  EXPECT_FALSE(items.IsDirectory(L"x.txt"));
  EXPECT_TRUE(items.IsDirectory(L"later.txt")) << "not found";
  std::filesystem::remove(scratch.path() / "x.txt");
  addFile("later.txt");
  EXPECT_FALSE(items.IsDirectory(L"x.txt"));
  EXPECT_FALSE(items.IsDirectory(L"later.txt"));
  EXPECT_TRUE(ShownItems().IsDirectory(L"x.txt"));
}

TEST_F(UnknownItems, AreAllKnownFromOneReadingOfTheFolder) {
  addFile("x.txt");
  addFolder("sub");
  ShownItems items;
  items.LookAtAll();
  for (const char* name : {"x.txt", "sub"}) std::filesystem::remove(scratch.path() / name);
  for (const char* name : {"sub", "later.txt"}) addFile(name);
  EXPECT_FALSE(items.IsDirectory(L"x.txt"));
  EXPECT_TRUE(items.IsDirectory(L"sub"));
  EXPECT_FALSE(items.IsDirectory(L"later.txt")) << "it came behind";
}

// U+0141 is none of code page 1252's; it looks most like an "L".
class LackedCharacters : public DirFileTest {
 protected:
  void SetUp() override {
    if (GetACP() != 1252U) GTEST_SKIP() << "this system's code page is " << GetACP() << ", not 1252";
    for (const wchar_t* name : {L"\u0141a.txt", L"La.txt"}) std::ofstream(scratch.path() / name) << "text";
    for (const wchar_t* name : {L"\u0141b", L"Lb"}) std::filesystem::create_directory(scratch.path() / name);
  }
  void start(const wchar_t* name) {
    const std::wstring path = (scratch.path() / name).wstring();
    // No narrow text names it, but the dialog can begin in the current directory.
    ASSERT_TRUE(SetCurrentDirectoryW(path.c_str()));
    outcome.path[0] = '\0';
  }
  void expectCleanFailure(const std::string& path) {
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.cancelled, 0);
    EXPECT_EQ(outcome.count, 0U);
    EXPECT_EQ(outcome.list, nullptr);
    EXPECT_EQ(outcome.path, path);
  }
  static void select(Driver& user, HWND list, const std::wstring& name) {
    const LRESULT count = user.send(list, LVM_GETITEMCOUNT);
    for (int i = 0; i < count; ++i) {
      if (ItemText(list, i) != name) continue;
      LVITEMA item{};
      item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
      user.send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    }
  }
};

// The answer was the other file, which is there.
TEST_F(LackedCharacters, MakeTheCallFailInAName) {
  run({}, [](Driver& user, HWND dialog) {
    select(user, user.waitForList(dialog, 4), L"\u0141a.txt");
    user.press(dialog, IDOK);
  });
  expectCleanFailure(folder());
}

TEST_F(LackedCharacters, AreNoMatterInItemsThatAreNotSelected) {
  run({}, [](Driver& user, HWND dialog) {
    select(user, user.waitForList(dialog, 4), L"La.txt");
    user.press(dialog, IDOK);
  });
  EXPECT_THAT(outcome.entries(), ElementsAre(folder() + "\\La.txt"));
}

TEST_F(LackedCharacters, MakeTheCallFailInTheFolder) {
  start(L"\u0141b");
  runHere({.mode = kListFolders}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  expectCleanFailure("");
}

TEST_F(LackedCharacters, AreNoMatterForAFolderThatIsTyped) {
  start(L"\u0141b");
  runHere({.mode = kListFolders}, [](Driver& user, HWND dialog) {
    user.type(user.control(dialog, kFolderEdit), "C:\\Temp");
    user.press(dialog, IDOK);
  });
  EXPECT_THAT(outcome.entries(), ElementsAre("C:\\Temp"));
}

// The folder was looked up under the other one's name, which is a file's here.
TEST_F(LackedCharacters, LeaveFoldersToBeFolders) {
  std::filesystem::remove(scratch.path() / L"Lb");
  addFile("Lb");
  int left = 0;
  run({.mode = kListFiles}, [&](Driver& user, HWND dialog) {
    const HWND list = user.waitForList(dialog, 4);
    for (int i = 0; i < 2; ++i) user.send(list, LVM_GETSELECTEDCOUNT);
    left = static_cast<int>(user.send(list, LVM_GETITEMCOUNT));
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(left, 3);
}

}  // namespace
