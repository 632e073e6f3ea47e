// SPDX-License-Identifier: MIT
#include "dialogs/FileDialogLayout.h"

namespace {

constexpr LONG kLabelGap = 2;

LONG heightOf(const RECT& rect) { return rect.bottom - rect.top; }
LONG widthOf(const RECT& rect) { return rect.right - rect.left; }

void moveTo(RECT& rect, LONG left, LONG top) {
  rect = {left, top, left + widthOf(rect), top + heightOf(rect)};
}

}  // namespace

void FileDialogLayout::arrange(LONG column) noexcept {
  moveTo(nameBox, column, nameBox.top);
  moveTo(typeBox, column, typeBox.top);
  moveTo(nameLabel, column - kLabelGap - widthOf(nameLabel), nameLabel.top);
  moveTo(typeLabel, column - kLabelGap - widthOf(typeLabel), typeLabel.top);

  const LONG boxGap = typeBox.top - nameBox.bottom;
  const LONG labelGap = typeLabel.top - nameLabel.bottom;
  moveTo(historyBox, typeBox.left, typeBox.bottom + boxGap);
  historyBox.right = typeBox.right;
  moveTo(historyLabel, typeLabel.left, typeLabel.bottom + labelGap);
  moveTo(readOnlyBox, historyBox.left, historyBox.bottom + boxGap);
}
