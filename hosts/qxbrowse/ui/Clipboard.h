// SPDX-License-Identifier: MIT
#pragma once

#include <cstring>
#include <string>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// Nothing happens where another program holds the clipboard.
inline void copyToClipboard(HWND owner, const std::wstring& text) {
  if (text.empty() || !OpenClipboard(owner)) return;
  const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes);
  if (block != nullptr) {
    std::memcpy(GlobalLock(block), text.c_str(), bytes);
    GlobalUnlock(block);
    EmptyClipboard();
    if (SetClipboardData(CF_UNICODETEXT, block) == nullptr) GlobalFree(block);
  }
  CloseClipboard();
}

}  // namespace browse
