// SPDX-License-Identifier: MIT
// A thread that has shown dialogs does not keep the library in the process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "QXDialogs.h"
#include "examples/host/SharedLibrary.h"
#include "tests/dialogs/Driver.h"
#include "tests/support/ScratchFolder.h"

namespace {

using dialog_test::drive;
using dialog_test::Driver;

void cancelPicker(const SharedLibrary& library) {
  char path[QX_PATH_SIZE] = "";
  char* list = nullptr;
  std::uint32_t count = 0;
  void* dialog = nullptr;
  QXBool cancelled = 0;
  const auto show = library.function<PfnDoOpenDirFileDialog>("DoOpenDirFileDialog");
  drive([&] { return show("Pick", "Take", &path, path, 1, 1, 1, 0, &list, &count, &dialog, &cancelled); },
        [](Driver& user) { user.press(user.waitForDialog(), IDCANCEL); });
  EXPECT_EQ(cancelled, 1);
  EXPECT_EQ(library.function<PfnDoFreeDirFileDialog>("DoFreeDirFileDialog")(dialog), 1);
}

void cancelFolderBrowser(const SharedLibrary& library) {
  char path[QX_FOLDER_SIZE] = "";
  drive([&] { return library.function<PfnQXSelectFolder>("QXSelectFolder")(path); },
        [](Driver& user) { user.press(user.waitForDialog(), IDCANCEL); });
}

// The first dialog of a thread made the run time hold the library until the thread's end.
TEST(Unloading, AfterADialogTheLibraryGoesWithItsLastUser) {
  const testing_support::ScratchFolder scratch;
  const std::string copy = scratch.file("unloaded.dll");
  std::filesystem::copy_file(std::getenv("QX_LIBRARY"), copy);
  const auto before = std::filesystem::current_path();
  {
    const SharedLibrary library(copy.c_str());
    cancelPicker(library);
    cancelFolderBrowser(library);
    EXPECT_NE(GetModuleHandleA(copy.c_str()), nullptr);
  }
  std::filesystem::current_path(before);
  EXPECT_EQ(GetModuleHandleA(copy.c_str()), nullptr);
}

}  // namespace
