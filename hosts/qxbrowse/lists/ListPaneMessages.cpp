// SPDX-License-Identifier: MIT
// What the list asks of its pane, and what the user does in it.
#include <algorithm>

#include "hosts/qxbrowse/lists/Formats.h"
#include "hosts/qxbrowse/lists/ListPane.h"
#include "hosts/qxbrowse/ui/WindowText.h"

namespace browse {

std::optional<LRESULT> ListPane::onNotify(const NMHDR& header) {
  if (header.hwndFrom != m_list) return {};
  switch (header.code) {
    case LVN_GETDISPINFOW:
      fillIn(*const_cast<NMLVDISPINFOW*>(reinterpret_cast<const NMLVDISPINFOW*>(&header)));
      return 0;
    case LVN_ODFINDITEMW:
      return findRow(reinterpret_cast<const NMLVFINDITEMW&>(header));
    case LVN_COLUMNCLICK:
      sort(static_cast<Column>(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem));
      return 0;
    case LVN_BEGINLABELEDITW:  // true: there is none
      return isParent(reinterpret_cast<const NMLVDISPINFOW&>(header).item.iItem) ? TRUE : FALSE;
    case LVN_ENDLABELEDITW:
      return endEdit(reinterpret_cast<const NMLVDISPINFOW&>(header));
    case LVN_BEGINDRAG:
      m_events.dragBegun(reinterpret_cast<const NMLISTVIEW&>(header));
      return 0;
    case LVN_ITEMCHANGED:
    case LVN_ODSTATECHANGED:
      m_events.selectionChanged();
      return 0;
    case NM_DBLCLK:
      m_events.activated();
      return 0;
    case NM_SETFOCUS:
      m_events.focused();
      return 0;
    default:
      return {};
  }
}

bool ListPane::onCommand(HWND control, WORD what) {
  if (control == m_up && what == BN_CLICKED) m_events.parentPressed();
  if (control == m_address && what == EN_SETFOCUS) m_events.focused();
  return control == m_up || control == m_address;
}

void ListPane::fillIn(NMLVDISPINFOW& wanted) {
  LVITEMW& cell = wanted.item;
  static const Item up{L"..", true, 0, 0};
  const Item* const item = isParent(cell.iItem) ? &up : itemAt(cell.iItem);
  if (item == nullptr) return;
  if ((cell.mask & LVIF_IMAGE) != 0) cell.iImage = m_kinds.icon(*item);
  if ((cell.mask & LVIF_TEXT) == 0) return;
  m_cell = cellText(*item, static_cast<Column>(cell.iSubItem));
  cell.pszText = m_cell.data();
}

std::wstring ListPane::cellText(const Item& item, Column column) {
  switch (column) {
    case Column::size:
      return item.isFolder ? std::wstring() : sizeText(item.size);
    case Column::type:
      return m_kinds.typeName(item);
    case Column::time:
      return timeText(item.time);
    case Column::name:
      break;
  }
  return item.name;
}

LRESULT ListPane::findRow(const NMLVFINDITEMW& wanted) const {
  constexpr UINT kByText = LVFI_STRING | LVFI_PARTIAL;  // the second implies the first
  if ((wanted.lvfi.flags & kByText) == 0 || wanted.lvfi.psz == nullptr) return -1;
  const auto start = static_cast<std::size_t>(std::max(wanted.iStart - rowOf(0), 0));
  const auto item = m_items.findPrefix(wanted.lvfi.psz, start);
  return item ? rowOf(*item) : -1;
}

// The list keeps the old name: the new one comes with the next listing, if there is one.
LRESULT ListPane::endEdit(const NMLVDISPINFOW& edit) {
  const Item* const item = itemAt(edit.item.iItem);
  if (edit.item.pszText == nullptr || item == nullptr || item->name == edit.item.pszText) return FALSE;
  m_events.renamed(Item(*item), edit.item.pszText);
  return FALSE;
}

LRESULT CALLBACK ListPane::handleAddress(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                         DWORD_PTR pane) {
  auto* const self = reinterpret_cast<ListPane*>(pane);
  if (message == WM_KEYDOWN && self->onAddressKey(wParam)) return 0;
  // What these keys would make of the text is a beep.
  const bool isDone = wParam == VK_RETURN || wParam == VK_ESCAPE || wParam == VK_TAB;
  if (message == WM_CHAR && isDone) return 0;
  if (message == WM_NCDESTROY) RemoveWindowSubclass(window, &handleAddress, 0);
  return DefSubclassProc(window, message, wParam, lParam);
}

bool ListPane::onAddressKey(WPARAM key) {
  if (key != VK_RETURN && key != VK_ESCAPE) return false;
  const std::wstring typed = windowText(m_address);
  if (key == VK_ESCAPE) setWindowText(m_address, m_path);
  SetFocus(m_list);
  if (key == VK_RETURN) m_events.pathTyped(typed);
  return true;
}

}  // namespace browse
