// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/MenuPlace.h"

namespace browse {

POINT menuPlace(HWND list, POINT asked) {
  if (asked.x != -1 || asked.y != -1) return asked;
  RECT room{}, name{LVIR_LABEL, 0, 0, 0};
  GetClientRect(list, &room);
  const LRESULT row = SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
  const bool isRow = row >= 0 && SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(row),
                                              reinterpret_cast<LPARAM>(&name)) != FALSE;
  POINT place{name.left, name.bottom};
  if (!isRow || !PtInRect(&room, place)) place = {};
  ClientToScreen(list, &place);
  return place;
}

}  // namespace browse
