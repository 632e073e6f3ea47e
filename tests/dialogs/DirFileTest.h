// SPDX-License-Identifier: MIT
// Runs the directory-or-file dialog as a host does and keeps what came back.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "dialogs/DirFileState.h"
#include "dialogs/OpenDirFileDialog.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/FolderTest.h"

namespace dialog_test {

inline constexpr std::uint32_t kNoFilter = 1;

struct DirFileOptions {
  std::uint32_t mode = kNoFilter;
  std::uint32_t flags = OFN_ALLOWMULTISELECT;
  bool files = true;
  bool open = true;
  const char* title = "Pick a place";
  const char* okText = "Pick";
};

// What the host's variables hold after the call. Frees the dialog at its end.
struct DirFileOutcome {
  DirFileOutcome() = default;
  ~DirFileOutcome() { EXPECT_EQ(FreeFileDialog(dialog), dialog != nullptr); }
  DirFileOutcome(const DirFileOutcome&) = delete;
  DirFileOutcome& operator=(const DirFileOutcome&) = delete;

  [[nodiscard]] std::vector<std::string> entries() const {
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < count; ++i) paths.emplace_back(list + i * kHostPathCapacity);
    return paths;
  }

  bool result = false;
  char path[kHostPathCapacity] = "";
  char* list = nullptr;
  std::uint32_t count = 77;
  void* dialog = nullptr;
  QXBool cancelled = 77;
};

class DirFileTest : public FolderTest {
 protected:
  // `user` presses the button that ends the dialog.
  void run(const DirFileOptions& options, const std::function<void(Driver&, HWND dialog)>& user) {
    std::snprintf(outcome.path, sizeof outcome.path, "%s", folder().c_str());
    runHere(options, user);
  }

  // The same, at the folder that is in outcome.path.
  void runHere(const DirFileOptions& options, const std::function<void(Driver&, HWND dialog)>& user) {
    const DirFileRequest request{options.title, options.okText, this,         options.files,
                                 options.open,  options.mode,   options.flags};
    outcome.dialog = this;  // anything but null
    const HostOutput output{outcome.path, &outcome.list, &outcome.count, &outcome.dialog, &outcome.cancelled};
    outcome.result = drive([&] { return OpenDirFileDialog(request, output); },
                           [&user](Driver& driver) { user(driver, driver.waitForDialog()); });
  }

  DirFileOutcome outcome;
};

}  // namespace dialog_test
