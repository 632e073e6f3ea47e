// SPDX-License-Identifier: MIT
// The call that shows the system's newer file dialog, and what it hands back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <thread>
#include <utility>

#include "dialogs/OpenDirFileDialog.h"
#include "dialogs/OpenFileDialog.h"
#include "framework/ui/CommonDialogs.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/FolderTest.h"
#include "tests/support/ModalBoxes.h"
// Only now:
#include <objbase.h>

namespace {

using dialog_test::drive;
using dialog_test::Driver;
using testing::ElementsAre;
using testing::IsEmpty;

class OpenFile : public dialog_test::FolderTest {
 protected:
  ~OpenFile() override {
    g_commonDialogs = {};
    delete[] list;
    if (dialog != this) FreeFileDialog(dialog);
  }

  [[nodiscard]] HostOutput output() { return {path, &list, &count, &dialog, &cancelled}; }
  void setPath(const std::string& text) { std::snprintf(path, sizeof path, "%s", text.c_str()); }

  void run(std::uint32_t flags, const std::function<void(Driver&, HWND dialog)>& user) {
    const void* const reserved[] = {this, this, this};
    result = drive([&] { return OpenFileDialog(reserved, flags, output()); },
                   [&user](Driver& driver) { user(driver, driver.waitForDialog()); });
  }

  [[nodiscard]] std::vector<std::string> entries() const {
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < count; ++i) paths.emplace_back(list + i * kHostPathCapacity);
    return paths;
  }
  // As it comes: the folder in front of the full name.
  [[nodiscard]] std::string entry(const std::string& name) const {
    return folder() + "\\" + folder() + "\\" + name;
  }

  bool result = false;
  char path[kHostPathCapacity] = "";
  char* list = nullptr;
  std::uint32_t count = 77;
  void* dialog = this;
  QXBool cancelled = 77;
};

TEST_F(OpenFile, GivesTheFolderAndTheFileBehindIt) {
  addFile("a.txt");
  addFile("b.txt");
  setPath(folder() + "\\");
  run(0, [](Driver& user, HWND window) {
    (void)user.waitForList(window, 2);
    user.typeName(window, "b.txt");
    user.press(window, IDOK);
  });
  EXPECT_TRUE(result);
  EXPECT_EQ(path, folder());
  EXPECT_THAT(entries(), ElementsAre(entry("b.txt")));
  EXPECT_EQ(cancelled, 0);
}

TEST_F(OpenFile, GivesSeveralFilesInTheOrderOfTheList) {
  for (const char* name : {"a.txt", "b.txt", "c.txt"}) addFile(name);
  setPath(folder() + "\\");
  run(OFN_ALLOWMULTISELECT, [](Driver& user, HWND window) {
    const HWND files = user.waitForList(window, 3);
    for (const char* name : {"c.txt", "a.txt"}) user.select(files, name);
    user.press(window, IDOK);
  });
  EXPECT_TRUE(result);
  EXPECT_THAT(entries(), ElementsAre(entry("a.txt"), entry("c.txt")));
}

TEST_F(OpenFile, BeginsWithTheNameThatItIsGiven) {
  addFile("given.txt");
  setPath(folder() + "\\given.txt");
  std::string shown;
  run(0, [&](Driver& user, HWND window) {
    (void)user.waitForList(window, 1);
    const HWND combo = GetDlgItem(window, 1148);
    shown = user.textOf(combo != nullptr ? combo : user.control(window, 1152));
    user.press(window, IDOK);
  });
  EXPECT_EQ(shown, "given.txt");
  EXPECT_THAT(entries(), ElementsAre(entry("given.txt")));
}

TEST_F(OpenFile, GivesADriveWithoutItsBackslash) {
  { std::ofstream("C:\\qx_dialog_test.txt") << "root"; }
  setPath("C:\\qx_dialog_test.txt");
  run(0, [](Driver& user, HWND window) {
    (void)user.waitForList(window, 1);
    user.press(window, IDOK);
  });
  std::filesystem::remove("C:\\qx_dialog_test.txt");
  EXPECT_STREQ(path, "C:");
  EXPECT_THAT(entries(), ElementsAre("C:\\C:\\qx_dialog_test.txt"));
}

TEST_F(OpenFile, GivesTheDialogAloneAfterACancel) {
  run(0, [](Driver& user, HWND window) { user.press(window, IDCANCEL); });
  EXPECT_FALSE(result);
  EXPECT_EQ(cancelled, 1);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(list, nullptr);
  EXPECT_NE(dialog, nullptr);
  EXPECT_NE(dialog, this);
  EXPECT_STREQ(path, "");
}

TEST_F(OpenFile, LeavesAPathListThatOutlivesTheDialog) {
  addFile("a.txt");
  setPath(folder() + "\\a.txt");
  run(0, [](Driver& user, HWND window) { user.press(window, IDOK); });
  ASSERT_TRUE(FreeFileDialog(dialog));
  dialog = nullptr;
  EXPECT_THAT(entries(), ElementsAre(entry("a.txt")));
}

TEST_F(OpenFile, LetsTheUserChooseAnExistingFileOnlyWhenItIsToldTo) {
  setPath(folder() + "\\");
  run(OFN_FILEMUSTEXIST, [](Driver& user, HWND window) {
    user.typeName(window, "missing.txt");
    user.press(window, IDOK);
    (void)user.answerBox(window);
    user.press(window, IDCANCEL);
  });
  EXPECT_EQ(cancelled, 1);
}

TEST_F(OpenFile, FailsAndWritesNothingWithoutOneOfItsArguments) {
  const HostOutput whole = output();
  const void* const all[] = {this, this, this};
  for (std::size_t missing = 0; missing < 3; ++missing) {
    const void* reserved[] = {this, this, this};
    reserved[missing] = nullptr;
    EXPECT_FALSE(OpenFileDialog(reserved, 0, whole)) << missing;
  }
  for (const HostOutput& each : {HostOutput{path, &list, nullptr, &dialog, &cancelled},
                                 HostOutput{path, &list, &count, nullptr, &cancelled},
                                 HostOutput{path, &list, &count, &dialog, nullptr}})
    EXPECT_FALSE(OpenFileDialog(all, 0, each));
  EXPECT_EQ(count, 77U);
  EXPECT_EQ(dialog, this);
  EXPECT_EQ(cancelled, 77);
}

// Each formatted entry has 256 bytes, and the folder stands in it twice.
TEST_F(OpenFile, FailsCleanlyWhenAnEntryDoesNotFit) {
  const std::string deep = std::string(60, 'd') + "\\" + std::string(60, 'e');
  addFolder(deep);
  addFile(deep + "\\a.txt");
  const std::string given = folder() + "\\" + deep + "\\a.txt";
  setPath(given);
  run(0, [](Driver& user, HWND window) {
    (void)user.waitForList(window, 1);
    user.press(window, IDOK);
  });
  EXPECT_FALSE(result);
  EXPECT_EQ(cancelled, 0);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(list, nullptr);
  EXPECT_NE(dialog, nullptr);
  EXPECT_EQ(path, given);
}

TEST_F(OpenFile, FailsCleanlyWithoutAPlaceForItsResult) {
  addFile("a.txt");
  const void* const reserved[] = {this, this, this};
  std::filesystem::current_path(scratch.path());
  for (const HostOutput& each : {HostOutput{nullptr, &list, &count, &dialog, &cancelled},
                                 HostOutput{path, nullptr, &count, &dialog, &cancelled}}) {
    const bool confirmed = drive([&] { return OpenFileDialog(reserved, 0, each); },
                                 [](Driver& user) {
                                   const HWND window = user.waitForDialog();
                                   user.typeName(window, "a.txt");
                                   user.press(window, IDOK);
                                 });
    EXPECT_FALSE(confirmed);
    EXPECT_EQ(cancelled, 0);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(list, nullptr);
    EXPECT_STREQ(path, "");
    EXPECT_TRUE(FreeFileDialog(std::exchange(dialog, nullptr)));
  }
}

// It was answered under the name of a file that merely looks like it.
TEST_F(OpenFile, FailsCleanlyForANameThatTheCodePageLacks) {
  addFile("La.txt");
  std::ofstream(scratch.path() / L"\u0141a.txt") << "another one";
  setPath(folder() + "\\");
  run(OFN_ALLOWMULTISELECT, [](Driver& user, HWND window) {
    user.selectAll(user.waitForList(window, 2));
    user.press(window, IDOK);
  });
  EXPECT_FALSE(result);
  EXPECT_EQ(cancelled, 0);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(list, nullptr);
  EXPECT_NE(dialog, nullptr);
}

TEST_F(OpenFile, FailsCleanlyInAFolderThatTheCodePageLacks) {
  const std::filesystem::path untold = scratch.path() / L"\u0141";
  std::filesystem::create_directory(untold);
  std::ofstream(untold / "a.txt") << "text";
  setPath(folder() + "\\");
  run(0, [](Driver& user, HWND window) {
    const HWND folders = user.waitForList(window, 1);
    user.doubleClick(folders, user.items(folders).front());
    (void)user.waitForList(window, {"a.txt"});
    user.typeName(window, "a.txt");
    user.press(window, IDOK);
  });
  EXPECT_FALSE(result);
  EXPECT_EQ(cancelled, 0);
  EXPECT_EQ(count, 0U);
}

HRESULT WINAPI makeNothing(REFCLSID, IUnknown*, DWORD, REFIID, void**) { return REGDB_E_CLASSNOTREG; }

TEST_F(OpenFile, SaysSoWhenThereIsNoSuchDialog) {
  g_commonDialogs.createInstance = &makeNothing;
  const void* const reserved[] = {this, this, this};
  const auto boxes = testing_support::modalBoxesOf([&] { result = OpenFileDialog(reserved, 0, output()); });
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, "Could not open FileDialog!");
  EXPECT_EQ(boxes[0].caption, "ERROR");
  EXPECT_FALSE(boxes[0].owned);
  EXPECT_FALSE(result);
  EXPECT_EQ(cancelled, 0);
  EXPECT_NE(dialog, nullptr);
}

bool g_asked = false;

HRESULT WINAPI noteAndMakeNothing(REFCLSID, IUnknown*, DWORD, REFIID, void**) {
  g_asked = true;
  return REGDB_E_CLASSNOTREG;
}

// It ran on a thread of its own, and the caller's windows were frozen until it was over.
TEST_F(OpenFile, SaysThatItCannotBeShownInAMultithreadedApartment) {
  g_commonDialogs.createInstance = &noteAndMakeNothing;
  const void* const reserved[] = {this, this, this};
  std::vector<testing_support::ModalBox> boxes;
  std::thread([&] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    boxes = testing_support::modalBoxesOf([&] { result = OpenFileDialog(reserved, 0, output()); });
    CoUninitialize();
  }).join();
  EXPECT_FALSE(g_asked);
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, "Could not open FileDialog!");
  EXPECT_FALSE(result);
  EXPECT_EQ(cancelled, 0);
  EXPECT_NE(dialog, nullptr);
}

}  // namespace
