// SPDX-License-Identifier: MIT
// Icons and type names as the shell shows them. The shell is asked once for each extension, never for a file.
#pragma once

#include <map>
#include <string>

#include "hosts/qxbrowse/lists/Items.h"
#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// The shell's own small or large images, which nobody frees.
HIMAGELIST shellImages(UINT dpi);

class FileKinds {
 public:
  // In shellImages().
  int icon(const Item& item) { return kindOf(item).icon; }
  const std::wstring& typeName(const Item& item) { return kindOf(item).typeName; }

 private:
  struct Kind {
    int icon = 0;
    std::wstring typeName;
  };
  const Kind& kindOf(const Item& item);
  static Kind ask(const Item& item, const std::wstring& extension);

  std::map<std::wstring, Kind> m_kinds;  // by extension; that of folders is L"/"
};

}  // namespace browse
