// SPDX-License-Identifier: MIT
// Names whose characters need two bytes in the system's code page. The second byte of U+8868 is that of a
// backslash: 0x95 0x5C.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/OkInterceptor.h"
#include "dialogs/OpenFileDialog.h"
#include "framework/ui/WideText.h"
#include "tests/dialogs/DirFileTest.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::drive;
using dialog_test::Driver;
using testing::ElementsAre;

const std::string kTable = "\x95\x5C";

class TwoByteNames : public DirFileTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(GetACP(), 932U) << "the tests' locale";
    const auto table = scratch.path() / L"\u8868";
    std::filesystem::create_directories(table / L"\u8868");
    std::ofstream(table / L"\u8868.txt") << "text";
    tableFolder = narrowText(scratch.path().wstring()) + "\\" + kTable;
  }
  void start(const std::string& folder) {
    std::snprintf(outcome.path, sizeof outcome.path, "%s", folder.c_str());
  }

  std::string tableFolder;
};

TEST_F(TwoByteNames, ComeBackAsTheyAre) {
  start(tableFolder);
  runHere({}, [](Driver& user, HWND dialog) {
    user.selectAll(user.waitForList(dialog, {kTable, kTable + ".txt"}));
    user.press(dialog, IDOK);
  });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.path, tableFolder);
  EXPECT_THAT(outcome.entries(),
              ElementsAre(tableFolder + "\\" + kTable, tableFolder + "\\" + kTable + ".txt"));
}

TEST_F(TwoByteNames, AreNoDoubledBackslash) {
  EXPECT_FALSE(HasDoubledBackslash((tableFolder + "\\" + kTable).c_str()));
  EXPECT_TRUE(HasDoubledBackslash((tableFolder + "\\\\" + kTable).c_str()));
  start(tableFolder + "\\" + kTable);
  runHere({.mode = kListFolders}, [](Driver& user, HWND dialog) { user.press(dialog, IDOK); });
  EXPECT_THAT(outcome.entries(), ElementsAre(tableFolder + "\\" + kTable));
}

TEST_F(TwoByteNames, AreFilteredByWhatTheyName) {
  std::vector<std::string> files, folders;
  for (const auto& [mode, shown] : {std::pair{kListFiles, &files}, std::pair{kListFolders, &folders}}) {
    start(tableFolder);
    runHere({.mode = mode}, [into = shown](Driver& user, HWND dialog) {
      const HWND list = user.waitForList(dialog, 2);
      user.send(list, LVM_GETSELECTEDCOUNT);
      *into = user.items(list);
      user.press(dialog, IDCANCEL);
    });
    EXPECT_TRUE(FreeFileDialog(outcome.dialog));
    outcome.dialog = nullptr;
  }
  EXPECT_THAT(files, ElementsAre(kTable + ".txt"));
  EXPECT_THAT(folders, ElementsAre(kTable));
}

TEST_F(TwoByteNames, KeepTheirSecondByteAtTheEndOfAFolder) {
  start(tableFolder + "\\" + kTable + ".txt");
  const void* const reserved[] = {this, this, this};
  outcome.result = drive(
      [&] {
        return OpenFileDialog(
            reserved, 0, {outcome.path, &outcome.list, &outcome.count, &outcome.dialog, &outcome.cancelled});
      },
      [](Driver& user) {
        const HWND dialog = user.waitForDialog();
        (void)user.waitForList(dialog, 2);
        user.press(dialog, IDOK);
      });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.path, tableFolder);
  EXPECT_THAT(outcome.entries(), ElementsAre(tableFolder + "\\" + tableFolder + "\\" + kTable + ".txt"));
  delete[] outcome.list;
}

}  // namespace
