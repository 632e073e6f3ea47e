// SPDX-License-Identifier: MIT
// What the shell knows about the items of the folder that a classic file dialog shows. Its view lives as long
// as the list of that folder.
#pragma once

#include <optional>
#include <string>

#include "framework/ui/Com.h"
// Only now:
#include <shlobj.h>

class ShellItems {
 public:
  ShellItems() noexcept = default;  // of no folder
  explicit ShellItems(HWND dialog) noexcept;

  // The file name of the view's item at `place`; "" when there is no such item, or none of the file system,
  // or when the list shows it as a `text` that is not the view's.
  [[nodiscard]] std::wstring NameOf(int place, const std::optional<std::wstring>& text) const;

 private:
  ComPtr<IFolderView> m_view;
  ComPtr<IShellFolder> m_folder;
};
