// SPDX-License-Identifier: MIT
// The library's dialogs as the program shows them.
#include "hosts/qxbrowse/LibraryDialogs.h"

#include <gmock/gmock.h>
#include <objbase.h>

#include <fstream>

#include "hosts/qxbrowse/ui/Names.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/SettledFolder.h"
#include "tests/hosts/qxbrowse/LaneTest.h"
#include "tests/support/ScratchFolder.h"

namespace browse {
namespace {

using dialog_test::drive;
using dialog_test::Driver;
using testing::ElementsAre;
using testing::IsEmpty;

class TheLibrarysDialogs : public testing::Test {
 protected:
  TheLibrarysDialogs() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~TheLibrarysDialogs() override { CoUninitialize(); }

  const testing_support::ScratchFolder scratch;
  const std::wstring folder = scratch.path().wstring();
  const LibraryDialogs dialogs{exports().library};
};

// "docs/qxbrowse.md" was told wherever that was.
TEST(TheHelpPage, IsTheOneOfThePackage) {
  const testing_support::ScratchFolder package;
  const std::filesystem::path program = package.path() / "bin";
  std::filesystem::create_directories(package.path() / "docs" / "html");
  EXPECT_EQ(helpPage(program), L"docs/qxbrowse.md") << "there is none";
  const std::filesystem::path text = package.path() / "docs" / "qxbrowse.md";
  std::ofstream(text) << "# qxbrowse";
  EXPECT_EQ(helpPage(program), text.wstring());
  EXPECT_EQ(helpPage(package.path()), text.wstring()) << "beside the program";
  const std::filesystem::path page = package.path() / "docs" / "html" / "qxbrowse.html";
  std::ofstream(page) << "<html>";
  EXPECT_EQ(helpPage(program), page.wstring());
}

TEST_F(TheLibrarysDialogs, ChooseAFolder) {
  const SettledFolder settled;
  const std::wstring start = fromLibrary(settled.path());
  const auto chosen = drive([&] { return dialogs.chooseFolder(start); },
                            [](Driver& user) { user.press(user.waitForDialog(), IDOK); });
  EXPECT_EQ(chosen, start);
}

TEST_F(TheLibrarysDialogs, AnswerNothingWhereTheUserGoesBack) {
  const auto chosen = drive([this] { return dialogs.chooseFolder(folder); },
                            [](Driver& user) { user.press(user.waitForDialog(), IDCANCEL); });
  EXPECT_EQ(chosen, std::nullopt);
  const auto files = drive([this] { return dialogs.chooseFiles(folder); },
                           [](Driver& user) { user.press(user.waitForDialog(), IDCANCEL); });
  EXPECT_THAT(files.paths, IsEmpty());
  EXPECT_FALSE(files.isTooLong);
}

TEST_F(TheLibrarysDialogs, ChooseFilesByTheirFullPaths) {
  std::ofstream(scratch.path() / "a.txt") << "a";
  const auto files = drive([this] { return dialogs.chooseFiles(folder); },
                           [](Driver& user) {
                             const HWND dialog = user.waitForDialog();
                             user.typeName(dialog, "a.txt");
                             user.press(dialog, IDOK);
                             user.waitUntilGone(dialog);
                           });
  EXPECT_THAT(files.paths, ElementsAre(folder + L"\\a.txt"));
}

TEST_F(TheLibrarysDialogs, ChooseFilesAndFolders) {
  std::ofstream(scratch.path() / "a.txt") << "a";
  std::filesystem::create_directory(scratch.path() / "sub");
  const auto chosen = drive([this] { return dialogs.chooseFilesAndFolders(folder, L"Choose", L"Take"); },
                            [](Driver& user) {
                              const HWND dialog = user.waitForDialog("Choose");
                              user.selectAll(user.waitForList(dialog, 2));
                              user.press(dialog, IDOK);
                              user.waitUntilGone(dialog);
                            });
  EXPECT_THAT(chosen.paths, testing::UnorderedElementsAre(folder + L"\\a.txt", folder + L"\\sub"));
}

TEST_F(TheLibrarysDialogs, ShowNoHelpThatIsNotThere) {
  EXPECT_FALSE(dialogs.showHelp(nullptr, folder + L"\\missing.chm"));
}

}  // namespace
}  // namespace browse
