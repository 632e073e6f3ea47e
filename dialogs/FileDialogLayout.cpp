// SPDX-License-Identifier: MIT
#include "dialogs/FileDialogLayout.h"

#include "dialogs/Rectangles.h"

namespace {

constexpr LONG kLabelGap = 2;

void moveTo(RECT& rect, LONG left, LONG top) { rect = {left, top, left + width(rect), top + height(rect)}; }

}  // namespace

void FileDialogLayout::arrange(LONG column) noexcept {
  moveTo(nameBox, column, nameBox.top);
  moveTo(typeBox, column, typeBox.top);
  moveTo(nameLabel, column - kLabelGap - width(nameLabel), nameLabel.top);
  moveTo(typeLabel, column - kLabelGap - width(typeLabel), typeLabel.top);

  const LONG boxGap = typeBox.top - nameBox.bottom;
  const LONG labelGap = typeLabel.top - nameLabel.bottom;
  moveTo(historyBox, typeBox.left, typeBox.bottom + boxGap);
  historyBox.right = typeBox.right;
  moveTo(historyLabel, typeLabel.left, typeLabel.bottom + labelGap);
  moveTo(readOnlyBox, historyBox.left, historyBox.bottom + boxGap);
}
