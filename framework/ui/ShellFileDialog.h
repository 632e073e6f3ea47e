// SPDX-License-Identifier: MIT
// The shell's newer file dialog, told what a classic record says.
#pragma once

#include <string>
#include <vector>

#include "framework/ui/ModalRun.h"
#include "framework/windows/windows_api.h"
// Only now:
#include <commdlg.h>

struct ChosenFiles {
  std::string folder;              // "" when the dialog showed a place outside the file system
  std::vector<std::string> paths;  // full names, in the dialog's order
  bool exact = true;               // false: the code page lacks a character of one of these
};

// Shows the dialog in `run` and waits for the user; false when nothing was chosen. Takes from the record: the
// options, the filter, the default extension, the initial folder and name, the title and the owner. Throws
// std::runtime_error when there is no such dialog, or the thread is none of a single-threaded apartment.
bool showShellFileDialog(const OPENFILENAMEA& record, bool open, ModalRun& run, ChosenFiles& chosen);
