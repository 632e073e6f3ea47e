// SPDX-License-Identifier: MIT
// The call that shows the directory-or-file dialog: its arguments, what it asks of the system, and its ends
// without a user.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "dialogs/DirFileOpen.h"
#include "framework/ui/CommonDialogs.h"
#include "framework/ui/ThreadState.h"
#include "tests/dialogs/DirFileTest.h"

namespace {

using dialog_test::drive;
using dialog_test::Driver;
using dialog_test::FolderTest;
using testing::ElementsAre;

// Stands in for the system's calls and keeps the records that they get.
class DirFileCall : public FolderTest {
 protected:
  DirFileCall() {
    g_commonDialogs.openFileName = &onOpen;
    g_commonDialogs.saveFileName = &onSave;
    seen = {};
  }
  ~DirFileCall() override { g_commonDialogs = {}; }

  struct Seen {
    OPENFILENAMEA record{};
    std::string calls, name, initialDirectory;
    bool fails = false;
    BOOL answer = FALSE;
    std::string folder;               // that OK stores, if any
    std::vector<std::wstring> names;  // that are selected
  };
  static Seen seen;

  static BOOL take(const OPENFILENAMEA& record, const char* call) {
    seen.record = record;
    seen.calls += call;
    seen.name = record.lpstrFile;
    seen.initialDirectory = record.lpstrInitialDir;
    if (seen.fails) throw std::runtime_error("no dialog");
    auto* const dialog = static_cast<CDirFileOpen*>(AfxGetThreadState()->m_pAlternateWndInit);
    if (!seen.folder.empty()) dialog->SetFolder(seen.folder);
    CDirFileOpen::SelectedNames() = seen.names;
    return seen.answer;
  }
  static BOOL WINAPI onOpen(OPENFILENAMEA* record) { return take(*record, "open"); }
  static BOOL WINAPI onSave(OPENFILENAMEA* record) { return take(*record, "save"); }

  bool call(const DirFileRequest& request) {
    return OpenDirFileDialog(request, {path, &list, &count, &dialog, &cancelled});
  }
  [[nodiscard]] DirFileRequest request() const { return {"Title", "OK", this, true, true, 1, 0}; }

  char path[300] = "C:\\windows";
  char* list = nullptr;
  std::uint32_t count = 7;
  void* dialog = this;
  QXBool cancelled = 7;
};

DirFileCall::Seen DirFileCall::seen;

TEST_F(DirFileCall, FailsAndWritesNothingWithoutOneOfItsArguments) {
  const HostOutput output{path, &list, &count, &dialog, &cancelled};
  auto withoutTitle = request();
  withoutTitle.title = nullptr;
  auto withoutText = request();
  withoutText.okText = nullptr;
  auto withoutReserved = request();
  withoutReserved.reserved = nullptr;
  for (const auto& each : {withoutTitle, withoutText, withoutReserved})
    EXPECT_FALSE(OpenDirFileDialog(each, output));
  for (const HostOutput& each : {HostOutput{path, &list, nullptr, &dialog, &cancelled},
                                 HostOutput{path, &list, &count, nullptr, &cancelled},
                                 HostOutput{path, &list, &count, &dialog, nullptr}})
    EXPECT_FALSE(OpenDirFileDialog(request(), each));
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(count, 7U);
  EXPECT_EQ(dialog, this);
  EXPECT_EQ(cancelled, 7);
  EXPECT_EQ(seen.calls, "");
}

TEST_F(DirFileCall, AsksForTheOlderExplorerDialogWithAHook) {
  auto with = request();
  with.flags = OFN_NOCHANGEDIR;
  EXPECT_FALSE(call(with));
  EXPECT_EQ(seen.calls, "open");
  EXPECT_EQ(seen.record.lStructSize, 136U);
  EXPECT_EQ(seen.record.Flags, static_cast<DWORD>(OFN_NOCHANGEDIR | OFN_EXPLORER | OFN_ENABLEHOOK));
  EXPECT_NE(seen.record.lpfnHook, nullptr);
  EXPECT_EQ(seen.record.hwndOwner, nullptr);
  EXPECT_EQ(seen.record.lpstrDefExt, nullptr);
  EXPECT_EQ(seen.record.lpstrFilter, nullptr);
  EXPECT_EQ(seen.initialDirectory, "C:\\windows");
  EXPECT_TRUE(FreeFileDialog(dialog));
}

TEST_F(DirFileCall, SavesWhenItIsToldTo) {
  auto save = request();
  save.open = false;
  EXPECT_FALSE(call(save));
  EXPECT_EQ(seen.calls, "save");
  EXPECT_TRUE(FreeFileDialog(dialog));
}

TEST_F(DirFileCall, BeginsWithAPatternThatNoFileMatchesInFolderMode) {
  EXPECT_FALSE(call(request()));
  EXPECT_EQ(seen.name, "") << "in file mode with a filter, if an empty one";
  EXPECT_TRUE(FreeFileDialog(dialog));

  auto folders = request();
  folders.files = false;
  EXPECT_FALSE(call(folders));
  EXPECT_EQ(seen.name, "*..*");
  EXPECT_TRUE(FreeFileDialog(dialog));
}

TEST_F(DirFileCall, BeginsWithAllFilesInFileModeWithoutAFilter) {
  CDirFileOpen made("Title", "OK", this, true, true, 1, "", 0, nullptr, nullptr);
  EXPECT_STREQ(made.m_ofn.lpstrFile, "*.*");
}

TEST_F(DirFileCall, TakesTheFirst255CharactersOfTheInitialDirectory) {
  std::string longFolder = "C:\\" + std::string(290, 'a');
  std::snprintf(path, sizeof path, "%s", longFolder.c_str());
  EXPECT_FALSE(call(request()));
  EXPECT_EQ(seen.initialDirectory, longFolder.substr(0, 255));
  EXPECT_TRUE(FreeFileDialog(dialog));
}

TEST_F(DirFileCall, SaysSoWhenTheDialogCannotRunAndHandsTheDialogOver) {
  seen.fails = true;
  bool result = true;
  dialog_test::Box box;
  result = drive([this] { return call(request()); }, [&box](Driver& user) { box = user.answerBox(nullptr); });
  EXPECT_EQ(box.text, "Could not open FileDialog!");
  EXPECT_EQ(box.caption, "ERROR");
  EXPECT_EQ(box.icon, LoadIconA(nullptr, IDI_HAND));
  EXPECT_EQ(box.buttons, 1);
  EXPECT_FALSE(result);
  EXPECT_EQ(cancelled, 0);
  EXPECT_EQ(count, 0U);
  EXPECT_TRUE(FreeFileDialog(dialog));
}

TEST_F(DirFileCall, IsConfirmedByAnOkAlone) {
  seen.folder = "C:\\data\\";
  seen.answer = IDRETRY;
  EXPECT_FALSE(call(request()));
  EXPECT_EQ(cancelled, 1);
  EXPECT_TRUE(FreeFileDialog(dialog));
  seen.answer = IDOK;
  EXPECT_TRUE(call(request()));
  EXPECT_EQ(cancelled, 0);
  EXPECT_TRUE(FreeFileDialog(dialog));
}

TEST_F(DirFileCall, IsCancelledWithoutAFolderThatOkHasStored) {
  seen.answer = IDOK;
  EXPECT_FALSE(call(request()));
  EXPECT_EQ(cancelled, 1);
  EXPECT_STREQ(path, "C:\\windows");
  EXPECT_TRUE(FreeFileDialog(dialog));
}

// A lone backslash is the one that OK has appended.
TEST_F(DirFileCall, GivesTheNamesAloneWithoutAFolderBeforeThem) {
  seen.answer = IDOK;
  seen.folder = "\\";
  seen.names = {L"a.txt", L"b.txt"};
  EXPECT_TRUE(call(request()));
  EXPECT_STREQ(path, "");
  ASSERT_EQ(count, 2U);
  EXPECT_STREQ(list, "a.txt");
  EXPECT_STREQ(list + kHostPathCapacity, "b.txt");
  EXPECT_TRUE(FreeFileDialog(dialog));
}

TEST_F(DirFileCall, FailsCleanlyWithoutAPlaceForItsResult) {
  seen.answer = IDOK;
  seen.folder = "C:\\data\\";
  for (const HostOutput& each : {HostOutput{nullptr, &list, &count, &dialog, &cancelled},
                                 HostOutput{path, nullptr, &count, &dialog, &cancelled}}) {
    EXPECT_FALSE(OpenDirFileDialog(request(), each));
    EXPECT_EQ(cancelled, 0);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(list, nullptr);
    EXPECT_STREQ(path, "C:\\windows");
    EXPECT_TRUE(FreeFileDialog(dialog));
  }
}

TEST_F(DirFileCall, TakesNullTextsForNone) {
  CDirFileOpen made(nullptr, nullptr, nullptr, false, true, 1, nullptr, 0, nullptr, nullptr);
  EXPECT_EQ(made.m_ofn.lpstrInitialDir, nullptr) << "the system chooses";
  EXPECT_EQ(made.m_ofn.lpstrFilter, nullptr);
  EXPECT_EQ(made.GetFolder(), "");
}

}  // namespace
