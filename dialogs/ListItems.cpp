// SPDX-License-Identifier: MIT
#include "dialogs/ListItems.h"

#include "framework/windows/windows_api.h"
// Only now:
#include <commctrl.h>

int ItemCount(HWND list) noexcept { return static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)); }

void ReadItemText(HWND list, int index, char (&text)[kItemTextSize]) noexcept {
  text[0] = '\0';
  LVITEMA item{};
  item.pszText = text;
  item.cchTextMax = static_cast<int>(kItemTextSize);
  SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
  text[kItemTextSize - 1] = '\0';
}

bool DeleteItem(HWND list, int index) noexcept {
  return SendMessageA(list, LVM_DELETEITEM, static_cast<WPARAM>(index), 0) != FALSE;
}

int NextSelectedItem(HWND list, int index) noexcept {
  return static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(index),
                                       MAKELPARAM(static_cast<UINT>(LVNI_SELECTED), 0)));
}
