// SPDX-License-Identifier: MIT
#include "dialogs/ListItems.h"

#include "framework/windows/windows_api.h"
// Only now:
#include <commctrl.h>

namespace {

constexpr int kItemTextSize = 256;

int nextItem(HWND list, int index, UINT state) noexcept {
  return static_cast<int>(
      SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(index), MAKELPARAM(state, 0)));
}

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

std::optional<std::wstring> KeptText(HWND list, int index) {
  wchar_t text[kItemTextSize] = L"";
  LVITEMW item{};
  item.mask = LVIF_TEXT | LVIF_NORECOMPUTE;
  item.iItem = index;
  item.pszText = text;
  item.cchTextMax = kItemTextSize;
  SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
  if (item.pszText == LPSTR_TEXTCALLBACKW) return std::nullopt;
  text[kItemTextSize - 1] = L'\0';
  return text;
}

bool DeleteItem(HWND list, int index) noexcept {
  return SendMessageA(list, LVM_DELETEITEM, static_cast<WPARAM>(index), 0) != FALSE;
}

int FocusedItem(HWND list) noexcept { return nextItem(list, -1, LVNI_FOCUSED); }

void SetItemFocus(HWND list, int index, bool focused) noexcept {
  LVITEMW item{};
  item.state = focused ? LVIS_FOCUSED : 0U;
  item.stateMask = LVIS_FOCUSED;
  SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

int NextSelectedItem(HWND list, int index) noexcept { return nextItem(list, index, LVNI_SELECTED); }
