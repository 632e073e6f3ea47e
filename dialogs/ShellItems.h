// SPDX-License-Identifier: MIT
// What the shell knows about the items of the folder that a classic file dialog shows. Its view lives as long
// as the list of that folder.
#pragma once

#include <string>

#include "framework/ui/Com.h"
// Only now:
#include <shlobj.h>

class ShellItems {
 public:
  ShellItems() noexcept = default;  // of no folder
  explicit ShellItems(HWND dialog) noexcept;

  // The file name of the item that the view shows as `text` at `place`; "" when there is no such item, or
  // none of the file system.
  [[nodiscard]] std::wstring NameOf(int place, const std::wstring& text) const;

 private:
  ComPtr<IFolderView> m_view;
  ComPtr<IShellFolder> m_folder;
};
