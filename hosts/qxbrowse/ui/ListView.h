// SPDX-License-Identifier: MIT
// What the lists of the window have in common.
#pragma once

#include <span>
#include <vector>

#include "hosts/qxbrowse/ui/System.h"
#include "hosts/qxbrowse/ui/Texts.h"

namespace browse {

struct ListColumn {
  Text title;
  int width;  // at 96 dots per inch
  int format;
};

void insertColumns(HWND list, std::span<const ListColumn> columns);
// As wide on a screen of other dots per inch as they are now.
void scaleColumns(HWND list, UINT dpiNow, UINT dpi);

// At 96 dots per inch, on a screen of `dpi`. Of those that are 0 the usual ones are taken.
void getWidths(HWND list, UINT dpi, std::span<int> widths);
void setWidths(HWND list, UINT dpi, std::span<const int> widths, std::span<const ListColumn> usual);

// Those behind the row `above`.
std::vector<std::size_t> selectedRows(HWND list, int above = -1);

}  // namespace browse
