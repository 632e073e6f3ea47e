// SPDX-License-Identifier: MIT
#include "dialogs/ListItems.h"

#include "framework/windows/windows_api.h"
// Only now:
#include <commctrl.h>

namespace {

constexpr int kItemTextSize = 256;

}  // namespace

int ItemCount(HWND list) noexcept { return static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)); }

std::wstring ItemText(HWND list, int index) {
  wchar_t text[kItemTextSize] = L"";
  LVITEMW item{};
  item.pszText = text;
  item.cchTextMax = kItemTextSize;
  SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
  text[kItemTextSize - 1] = L'\0';
  return text;
}

bool DeleteItem(HWND list, int index) noexcept {
  return SendMessageA(list, LVM_DELETEITEM, static_cast<WPARAM>(index), 0) != FALSE;
}

int NextSelectedItem(HWND list, int index) noexcept {
  return static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(index),
                                       MAKELPARAM(static_cast<UINT>(LVNI_SELECTED), 0)));
}
