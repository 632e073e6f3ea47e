// SPDX-License-Identifier: MIT
// Finds a window of a thread, in this process or in another.
#pragma once

#include <string_view>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

constexpr const wchar_t* kMainWindow = L"qxbrowse";  // these are classes
constexpr const wchar_t* kMenu = L"#32768";

// The first visible top-level window of the class, or null.
inline HWND visibleWindow(DWORD thread, std::wstring_view className) {
  struct Search {
    std::wstring_view wanted;
    HWND found;
  } search{className, nullptr};
  EnumThreadWindows(
      thread,
      [](HWND window, LPARAM address) -> BOOL {
        auto& now = *reinterpret_cast<Search*>(address);
        wchar_t name[16] = L"";
        GetClassNameW(window, name, static_cast<int>(std::size(name)));
        if (name == now.wanted && IsWindowVisible(window)) now.found = window;
        return now.found == nullptr;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

}  // namespace browse
