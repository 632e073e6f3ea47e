// SPDX-License-Identifier: MIT
// What the items of the dialog's list stand for in the folder that is shown. Names count from the current
// directory, which follows that folder.
#pragma once

#include <string>
#include <unordered_map>

#include "dialogs/ShellItems.h"

class ShownItems {
 public:
  ShownItems() = default;  // of no folder
  explicit ShownItems(HWND dialog) noexcept : m_shell(dialog) {}

  // The item's file name. Its text may lack the extension, which the shell can hide; a text that names
  // nothing even so is the answer itself.
  std::wstring NameOf(HWND list, int index);

  // Takes the kinds of all names from one reading of the folder, for a caller that wants to know most of
  // them: a look at each one costs a way to the disk, or to a server. Nothing the second time.
  void LookAtAll();

  // One that is not found reports all attributes and so is a directory.
  bool IsDirectory(const std::wstring& name);

 private:
  DWORD attributesOf(const std::wstring& name);
  bool exists(const std::wstring& name) { return attributesOf(name) != INVALID_FILE_ATTRIBUTES; }

  ShellItems m_shell;
  std::unordered_map<std::wstring, DWORD> m_attributes;  // of what has been found
  bool m_lookedAtAll = false;
};
