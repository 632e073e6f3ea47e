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

  // One that is not found reports all attributes and so is a directory.
  bool IsDirectory(const std::wstring& name);

 private:
  DWORD attributesOf(const std::wstring& name);
  bool exists(const std::wstring& name) { return attributesOf(name) != INVALID_FILE_ATTRIBUTES; }

  ShellItems m_shell;
  std::unordered_map<std::wstring, DWORD> m_attributes;  // of what has been found
};
