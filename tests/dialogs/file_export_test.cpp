// SPDX-License-Identifier: MIT
// The file dialogs as a foreign host sees them: by their exports alone.
#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "QXDialogs.h"
#include "QXExports.h"
#include "examples/host/SharedLibrary.h"
#include "tests/dialogs/Driver.h"
#include "tests/support/ScratchFolder.h"
// Only now:
#include <commctrl.h>
#include <commdlg.h>

namespace {

using dialog_test::drive;
using dialog_test::Driver;
using testing::ElementsAre;
using User = std::function<void(Driver&, HWND dialog)>;

class FileExport : public testing::Test {
 protected:
  FileExport() {
    for (const char* name : {"a.txt", "b.txt"}) std::ofstream(scratch.path() / name) << name;
    std::filesystem::create_directory(scratch.path() / "sub");
    std::snprintf(path, sizeof path, "%s", folder.c_str());
    EXPECT_EQ(references(), 0U);
  }
  ~FileExport() override {
    EXPECT_EQ(free(dialog), dialog != nullptr);
    EXPECT_EQ(references(), 0U);
    std::filesystem::current_path(before);
  }

  void pick(std::uint32_t mode, const User& user) {
    const auto show = library.function<PfnDoOpenDirFileDialog>("DoOpenDirFileDialog");
    result = drive(
        [&] {
          return show("Pick", "Take", this, path, 1, 1, mode, OFN_ALLOWMULTISELECT, &list, &count, &dialog,
                      &cancelled);
        },
        [&user](Driver& driver) { user(driver, driver.waitForDialog()); });
  }

  void open(const void* reserved, const User& user) {
    const auto show = library.function<PfnDoOpenFileDialog>("DoOpenFileDialog");
    result = drive(
        [&] {
          return show(this, this, reserved, path, nullptr, OFN_ALLOWMULTISELECT, &list, &count, &dialog,
                      &cancelled);
        },
        [&](Driver& driver) {
          if (user) user(driver, driver.waitForDialog());
        });
  }

  [[nodiscard]] std::uint32_t references() const {
    library.function<PfnDllAddRef>("DllAddRef")();
    return library.function<PfnDllRelease>("DllRelease")();
  }
  [[nodiscard]] std::vector<std::string> entries() const {
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < count; ++i) paths.emplace_back(list + std::size_t{i} * QX_PATH_SIZE);
    return paths;
  }

  const SharedLibrary library{std::getenv("QX_LIBRARY")};
  const PfnDoFreeDirFileDialog free = library.function<PfnDoFreeDirFileDialog>("DoFreeDirFileDialog");
  const testing_support::ScratchFolder scratch;
  const std::string folder = scratch.path().string();
  const std::filesystem::path before = std::filesystem::current_path();
  char path[QX_PATH_SIZE] = "";
  char* list = nullptr;
  std::uint32_t count = 0;
  void* dialog = nullptr;
  QXBool cancelled = 0;
  QXBool result = 0;
};

TEST_F(FileExport, PicksItemsOfAFolder) {
  pick(1, [](Driver& user, HWND window) {
    const HWND items = user.waitForList(window, 3);
    for (const char* name : {"b.txt", "sub"}) user.select(items, name);
    user.press(window, IDOK);
  });
  EXPECT_EQ(result, 1);
  EXPECT_THAT(entries(), ElementsAre(folder + "\\sub", folder + "\\b.txt"));
  EXPECT_EQ(references(), 1U);
}

TEST_F(FileExport, PicksOneFolder) {
  pick(QX_LIST_FOLDERS, [](Driver& user, HWND window) { user.press(window, IDOK); });
  EXPECT_EQ(result, 1);
  EXPECT_THAT(entries(), ElementsAre(folder));
}

TEST_F(FileExport, ShowsFilesOnlyWhenAskedFor) {
  std::vector<std::string> shown;
  pick(QX_LIST_FILES, [&](Driver& user, HWND window) {
    const HWND items = user.waitForList(window, 3);
    user.send(items, LVM_GETSELECTEDCOUNT);
    shown = user.items(items);
    user.press(window, IDCANCEL);
  });
  EXPECT_THAT(shown, ElementsAre("a.txt", "b.txt"));
}

TEST_F(FileExport, HandsThePickerOverAfterACancel) {
  pick(1, [](Driver& user, HWND window) { user.press(window, IDCANCEL); });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(cancelled, 1);
  EXPECT_NE(dialog, nullptr);
  EXPECT_EQ(references(), 1U);
}

TEST_F(FileExport, OpensFiles) {
  std::snprintf(path, sizeof path, "%s\\", folder.c_str());
  open(this, [](Driver& user, HWND window) {
    const HWND items = user.waitForList(window, 3);
    for (const char* name : {"a.txt", "b.txt"}) user.select(items, name);
    user.press(window, IDOK);
  });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(references(), 0U) << "only the picker counts";
  EXPECT_EQ(path, folder);
  EXPECT_THAT(entries(), ElementsAre(folder + "\\" + folder + "\\a.txt", folder + "\\" + folder + "\\b.txt"));
}

TEST_F(FileExport, HandsTheFileDialogOverAfterACancel) {
  library.function<PfnDllAddRef>("DllAddRef")();
  open(this, [this](Driver& user, HWND window) {
    EXPECT_EQ(references(), 1U);
    user.press(window, IDCANCEL);
  });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(cancelled, 1);
  EXPECT_NE(dialog, nullptr);
  EXPECT_EQ(free(std::exchange(dialog, nullptr)), 1);
  EXPECT_EQ(references(), 1U) << "what did not count takes nothing away";
  EXPECT_EQ(library.function<PfnDllRelease>("DllRelease")(), 0U);
}

TEST_F(FileExport, LeavesEverythingUntouchedWithoutAThirdArgument) {
  cancelled = 7;
  count = 7;
  open(nullptr, nullptr);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(cancelled, 7);
  EXPECT_EQ(count, 7U);
  EXPECT_EQ(dialog, nullptr);
}

TEST_F(FileExport, FreesNothingForNull) { EXPECT_EQ(free(nullptr), 0); }

}  // namespace
