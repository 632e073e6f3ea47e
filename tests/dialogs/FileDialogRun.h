// SPDX-License-Identifier: MIT
// Shows a framework's file dialog and looks at what was chosen.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "framework/ui/FileDialog.h"
#include "tests/dialogs/Driver.h"

namespace dialog_test {

inline std::vector<std::string> walk(const CFileDialog& dialog) {
  std::vector<std::string> paths;
  for (POSITION position = dialog.GetStartPosition(); position != nullptr;)
    paths.push_back(dialog.GetNextPathName(position));
  return paths;
}

inline int show(CFileDialog& dialog, const std::function<void(Driver&, HWND window)>& user) {
  return drive([&] { return dialog.DoModal(); },
               [&user](Driver& driver) { user(driver, driver.waitForDialog()); });
}

}  // namespace dialog_test
