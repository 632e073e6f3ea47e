// SPDX-License-Identifier: MIT
// Each dialog of the library, called through its export as any host would.
#pragma once

#include <span>
#include <string>

#include "examples/host/SharedLibrary.h"

// What a dialog is asked, and what it answered.
struct Request {
  const SharedLibrary& library;
  void* window;      // of the host, or null
  std::string path;  // where to start; for help the file
};

struct Answer {
  bool confirmed;
  std::string text;  // one line for the folder and for each chosen path
};

struct Dialog {
  const char* name;   // on the command line
  const char* title;  // in the menu
  // Throws std::runtime_error when the library lacks the export.
  Answer (*show)(const Request&);
};

std::span<const Dialog> dialogs();
