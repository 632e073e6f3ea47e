// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

inline std::wstring windowText(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

// Leaves a window alone that has the text: nothing flickers.
inline void setWindowText(HWND window, const std::wstring& text) {
  if (windowText(window) != text) SetWindowTextW(window, text.c_str());
}

}  // namespace browse
