// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/pane/LinesPane.h"

#include <algorithm>
#include <iterator>

#include "hosts/qxbrowse/ui/Clipboard.h"
#include "hosts/qxbrowse/ui/ListView.h"
#include "hosts/qxbrowse/ui/Names.h"

namespace browse {
namespace {

constexpr DWORD kLinesStyle =
    WS_CHILD | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_NOCOLUMNHEADER | LVS_SHOWSELALWAYS;

}  // namespace

void LinesPane::create(HWND parent, const wchar_t* title) {
  m_list = CreateWindowExW(0, WC_LISTVIEWW, title, kLinesStyle, 0, 0, 0, 0, parent, nullptr,
                           GetModuleHandleW(nullptr), nullptr);
  constexpr DWORD kExtended = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
  SendMessageW(m_list, LVM_SETEXTENDEDLISTVIEWSTYLE, kExtended, kExtended);
  LVCOLUMNW column{};
  column.mask = LVCF_WIDTH;
  SendMessageW(m_list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
}

void LinesPane::place(const RECT& area) const {
  const int width = area.right - area.left;
  MoveWindow(m_list, area.left, area.top, width, area.bottom - area.top, TRUE);
  SendMessageW(m_list, LVM_SETCOLUMNWIDTH, 0, width - GetSystemMetrics(SM_CXVSCROLL));
}

bool LinesPane::isAtEnd() const {
  const auto top = SendMessageW(m_list, LVM_GETTOPINDEX, 0, 0);
  const auto shown = SendMessageW(m_list, LVM_GETCOUNTPERPAGE, 0, 0);
  return top + shown >= static_cast<LRESULT>(m_lines.size());
}

void LinesPane::add(std::vector<std::string> lines) {
  const bool follows = isAtEnd();
  const bool isDropping = m_lines.size() + lines.size() > kMostLines;
  std::ranges::move(lines, std::back_inserter(m_lines));
  if (isDropping) m_lines.erase(m_lines.begin(), m_lines.end() - static_cast<std::ptrdiff_t>(kMostLines));
  SendMessageW(m_list, LVM_SETITEMCOUNT, m_lines.size(),
               isDropping ? LVSICF_NOSCROLL : LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
  if (follows && !m_lines.empty()) SendMessageW(m_list, LVM_ENSUREVISIBLE, m_lines.size() - 1, FALSE);
}

bool LinesPane::onNotify(const NMHDR& header) {
  if (header.hwndFrom != m_list) return false;
  if (header.code == LVN_KEYDOWN) {
    const WORD key = reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey;
    if (key == 'C' && GetKeyState(VK_CONTROL) < 0) copySelected();
  }
  if (header.code != LVN_GETDISPINFOW) return true;
  LVITEMW& cell = reinterpret_cast<NMLVDISPINFOW&>(const_cast<NMHDR&>(header)).item;
  if ((cell.mask & LVIF_TEXT) == 0 || cell.iItem < 0) return true;
  const auto row = static_cast<std::size_t>(cell.iItem);
  m_cell = row < m_lines.size() ? fromLibrary(m_lines[row]) : std::wstring();
  cell.pszText = m_cell.data();
  return true;
}

void LinesPane::copySelected() const {
  std::wstring text;
  for (const std::size_t row : selectedRows(m_list)) text += fromLibrary(m_lines[row]) + L"\r\n";
  copyToClipboard(m_list, text);
}

}  // namespace browse
