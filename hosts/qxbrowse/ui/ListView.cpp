// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/ListView.h"

#include "hosts/qxbrowse/ui/Dpi.h"

namespace browse {

void insertColumns(HWND list, std::span<const ListColumn> columns) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::wstring title = text(columns[i].title);
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    column.fmt = columns[i].format;
    column.cx = columns[i].width;
    column.pszText = title.data();
    SendMessageW(list, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
  }
}

void scaleColumns(HWND list, UINT dpiNow, UINT dpi) {
  const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
  const auto columns = static_cast<WPARAM>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
  for (WPARAM i = 0; i < columns; ++i) {
    const auto width = static_cast<int>(SendMessageW(list, LVM_GETCOLUMNWIDTH, i, 0));
    SendMessageW(list, LVM_SETCOLUMNWIDTH, i, MulDiv(width, static_cast<int>(dpi), static_cast<int>(dpiNow)));
  }
}

void getWidths(HWND list, UINT dpi, std::span<int> widths) {
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const auto width = static_cast<int>(SendMessageW(list, LVM_GETCOLUMNWIDTH, i, 0));
    widths[i] = MulDiv(width, static_cast<int>(kPlainDpi), static_cast<int>(dpi));
  }
}

void setWidths(HWND list, UINT dpi, std::span<const int> widths, std::span<const ListColumn> usual) {
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const int width = widths[i] > 0 ? widths[i] : usual[i].width;
    SendMessageW(list, LVM_SETCOLUMNWIDTH, i, scale(width, dpi));
  }
}

std::vector<std::size_t> selectedRows(HWND list, int above) {
  std::vector<std::size_t> rows;
  LRESULT row = above;
  while ((row = SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) >= 0) {
    rows.push_back(static_cast<std::size_t>(row));
  }
  return rows;
}

}  // namespace browse
