// SPDX-License-Identifier: MIT
// The folder browser as a foreign host sees it. The help launcher with the system's own control stands here
// as well: the launcher's other tests have none.
#include <cstdlib>
#include <filesystem>

#include "QXDialogs.h"
#include "examples/host/SharedLibrary.h"
#include "tests/dialogs/BrowseControls.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/SettledFolder.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::drive;
using dialog_test::Driver;

class FolderExport : public testing::Test {
 protected:
  ~FolderExport() override { std::filesystem::current_path(before); }

  // The buffer afterwards; `result` is what the export answered.
  std::string choose(const std::string& start, const std::function<void(Driver&, HWND)>& user) {
    char path[QX_FOLDER_SIZE] = "";
    start.copy(path, sizeof path - 1);
    result = drive([&] { return library.function<PfnQXSelectFolder>("QXSelectFolder")(path); },
                   [&](Driver& driver) { user(driver, driver.waitForDialog()); });
    return path;
  }

  // Confirms the folder that the dialog starts at.
  std::string confirm(const std::string& start, const std::string& expected) {
    return choose(start, [&](Driver& user, HWND dialog) {
      waitForFolder(user, dialog, expected);
      user.press(dialog, IDOK);
    });
  }

  const SharedLibrary library{std::getenv("QX_LIBRARY")};
  const SettledFolder scratch;
  const std::filesystem::path before = std::filesystem::current_path();
  QXBool result = 0xA5;
};

TEST_F(FolderExport, ANullPathAnswersFalse) {
  EXPECT_EQ(library.function<PfnQXSelectFolder>("QXSelectFolder")(nullptr), 0);
}

TEST_F(FolderExport, AnEmptyStartFolderOpensAtTheCurrentDirectory) {
  std::filesystem::current_path(scratch.path());
  EXPECT_EQ(confirm("", scratch.path()), scratch.path());
  EXPECT_EQ(result, 1);
}

TEST_F(FolderExport, CancellingLeavesTheBufferAndAnswersFalse) {
  const std::string start = scratch.path();
  const std::string other = scratch.folder("others");
  const std::string path = choose(start, [&](Driver& user, HWND dialog) {
    waitForFolder(user, dialog, start);
    selectFolder(user, dialog, other);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(path, start);
  EXPECT_EQ(result, 0);
}

TEST_F(FolderExport, ItOpensAtTheStartFolder) {
  const std::string start = scratch.path();
  for (const std::string& given : {start, start + "\\"}) {
    EXPECT_EQ(confirm(given, start), start);
    EXPECT_EQ(result, 1);
  }
}

TEST_F(FolderExport, TheChosenFolderIsWrittenBack) {
  const std::string start = scratch.path();
  const std::string chosen = scratch.folder("chosen");
  const std::string path = choose(start, [&](Driver& user, HWND dialog) {
    waitForFolder(user, dialog, start);
    selectFolder(user, dialog, chosen);
    user.press(dialog, IDOK);
  });
  EXPECT_EQ(path, chosen);
  EXPECT_EQ(result, 1);
}

// A second dialog must not start where the first one did.
TEST_F(FolderExport, AnEmptyStartFolderReplacesTheOneOfTheLastDialog) {
  const std::string first = scratch.folder("before");
  EXPECT_EQ(confirm(first, first), first);
  std::filesystem::current_path(scratch.path());
  EXPECT_EQ(confirm("", scratch.path()), scratch.path());
}

TEST_F(FolderExport, AMissingStartFolderSelectsNothing) {
  const std::string start = scratch.path() + "\\absent";
  std::string shown = "?";
  const std::string path = choose(start, [&](Driver& user, HWND dialog) {
    const HWND tree = user.control(dialog, kTree);
    user.waitUntil("a tree", [&] { return user.send(tree, TVM_GETCOUNT) > 0; });
    shown = user.textOf(user.control(dialog, kStatusText));
    user.press(dialog, IDOK);
  });
  EXPECT_EQ(shown, "");
  EXPECT_NE(path, start);
  EXPECT_TRUE(std::filesystem::is_directory(path));
}

TEST_F(FolderExport, TheButtonForNewFoldersIsHidden) {
  bool visible = true;
  choose(scratch.path(), [&](Driver& user, HWND dialog) {
    visible = IsWindowVisible(user.control(dialog, kNewFolderButton));
    user.press(dialog, IDCANCEL);
  });
  EXPECT_FALSE(visible);
}

TEST_F(FolderExport, ItHasNoOwnerAndNoInstruction) {
  HWND owner = nullptr;
  std::string instruction = "?";
  choose(scratch.path(), [&](Driver& user, HWND dialog) {
    owner = GetWindow(dialog, GW_OWNER);
    instruction = user.textOf(user.control(dialog, kInstruction));
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(owner, nullptr);
  EXPECT_EQ(instruction, "");
}

TEST(HtmlHelpOfTheSystem, IsFoundAndMayFailQuietly) {
  const SharedLibrary library(std::getenv("QX_LIBRARY"));
  const auto help = library.function<PfnDoHtmlHelp>("DoHtmlHelp");
  EXPECT_EQ(help(nullptr, "no such manual.chm", 0, 0), 1);
  EXPECT_NE(GetModuleHandleA("hhctrl.ocx"), nullptr);
}

}  // namespace
