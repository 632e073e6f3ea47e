// SPDX-License-Identifier: MIT
// Names whose characters need two bytes in the system's code page. The second byte of U+8868 is that of a
// backslash: 0x95 0x5C. That of U+30DD is a bar: 0x83 0x7C.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/OkInterceptor.h"
#include "dialogs/OpenFileDialog.h"
#include "framework/WinApp.h"
#include "framework/ui/NarrowText.h"
#include "framework/ui/WideText.h"
#include "tests/dialogs/ChildProgram.h"
#include "tests/dialogs/DirFileTest.h"
#include "tests/dialogs/FileDialogStandIn.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::drive;
using dialog_test::Driver;
using testing::ElementsAre;

const std::string kTable = "\x95\x5C";
const std::string kPo = "\x83\x7C";

constexpr auto kNowhere = std::string_view::npos;

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

// The second bytes are no backslash and no bar.
TEST_F(TwoByteNames, AreSearchedByCharacters) {
  EXPECT_EQ(findText(kTable + "\\", "\\"), 2U);
  EXPECT_EQ(findText(kTable, "\\"), kNowhere);
  EXPECT_EQ(findLastOf("a\\" + kTable, "\\/"), 1U);
  EXPECT_EQ(findLastOf(kTable, "\\"), kNowhere);
  EXPECT_TRUE(endsWith(kTable + "\\", '\\'));
  EXPECT_FALSE(endsWith(kTable, '\\'));
  EXPECT_FALSE(endsWith("", '\\'));
  EXPECT_EQ(lastComponent("C:\\a/" + kTable + ".txt"), kTable + ".txt");
  EXPECT_EQ(lastComponent(kTable), kTable);

  std::string bars = "|" + kPo + "|";
  replaceEach(bars, '|', '!');
  EXPECT_EQ(bars, "!" + kPo + "!");
}

TEST_F(TwoByteNames, AreNeverHalved) {
  EXPECT_EQ(leadingCharacters(kTable + kPo, 4), kTable + kPo);
  EXPECT_EQ(leadingCharacters(kTable + kPo, 3), kTable);
  EXPECT_EQ(leadingCharacters(kTable, 1), "");
  EXPECT_EQ(leadingCharacters("", 1), "");
  EXPECT_EQ(characterSize("\x95", 0), 1U) << "a first byte alone";
}

TEST_F(TwoByteNames, AreNotHalvedAtTheEndOfAnInitialFolder) {
  const std::string fits = "C:\\" + std::string(251, 'x');
  std::string seen;
  const FileDialogStandIn standIn([&seen](OPENFILENAMEA& record) {
    seen = record.lpstrInitialDir;
    return FALSE;
  });
  (fits + kTable).copy(outcome.path, kHostPathCapacity);
  const DirFileRequest request{"Title", "OK", this, true, true, dialog_test::kNoFilter, 0};
  EXPECT_FALSE(OpenDirFileDialog(
      request, {outcome.path, &outcome.list, &outcome.count, &outcome.dialog, &outcome.cancelled}));
  EXPECT_EQ(seen, fits);
}

// No backslash was put between the folder and the names.
TEST_F(TwoByteNames, HaveABackslashBehindThemInAFolderOfSeveralFiles) {
  std::ofstream(scratch.path() / L"\u8868" / "other.txt") << "text";
  CFileDialog dialog(true, nullptr, "", OFN_ALLOWMULTISELECT, "Texts|*.txt||", nullptr, 0, false);
  dialog.m_ofn.lpstrInitialDir = tableFolder.c_str();
  drive([&] { return dialog.DoModal(); },
        [](Driver& user) {
          const HWND window = user.waitForDialog();
          const HWND list = user.waitForList(window, 3);
          for (const std::string& name : {kTable + ".txt", std::string("other.txt")}) user.select(list, name);
          user.press(window, IDOK);
        });
  EXPECT_EQ(dialog.GetFolderPath(), tableFolder);
  std::vector<std::string> paths;
  for (POSITION position = dialog.GetStartPosition(); position != nullptr;)
    paths.push_back(dialog.GetNextPathName(position));
  EXPECT_THAT(paths, testing::UnorderedElementsAre(tableFolder + "\\" + kTable + ".txt",
                                                   tableFolder + "\\other.txt"));
}

// The filter was split within the character.
TEST_F(TwoByteNames, StayWholeInAFilter) {
  const CFileDialog dialog(true, nullptr, "", 0, (kPo + "|*." + kPo + "|All|*.*||").c_str(), nullptr);
  const std::string expected = kPo + '\0' + "*." + kPo + '\0' + "All" + '\0' + "*.*" + '\0' + '\0';
  EXPECT_EQ(std::string(dialog.m_ofn.lpstrFilter, expected.size()), expected);
}

std::filesystem::path ownProgram() {
  wchar_t program[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  return program;
}

// The profile's file was ".INI" for each program whose name began so. A copy of this one looks at its own.
TEST_F(TwoByteNames, AreTheProfilesNameInFull) {
  const std::filesystem::path program = ownProgram();
  if (program.stem() != L"\u8868") {
    const auto copy = scratch.path() / L"\u8868.exe";
    std::filesystem::copy_file(program, copy);
    const dialog_test::ChildProgram child(
        narrowText(copy.wstring()), "--gtest_filter=*.AreTheProfilesNameInFull", scratch.file("output.txt"));
    EXPECT_EQ(child.wait(), 0U);
    return;
  }
  const CWinApp app;
  ASSERT_TRUE(app.WriteProfileString("Texts", "Folder0", "a"));
  wchar_t folder[MAX_PATH] = L"";
  ASSERT_NE(GetEnvironmentVariableW(L"APPDATA", folder, MAX_PATH), 0U);
  EXPECT_TRUE(std::filesystem::remove(std::filesystem::path(folder) / L"\u8868.INI"));
}

}  // namespace
