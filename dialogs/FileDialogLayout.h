// SPDX-License-Identifier: MIT
// Where the controls of a CXFileDialog stand. Arithmetic only; all rectangles in the client co-ordinates of
// the dialog.
//
//              column
//     Label 1090  |name box 1148        |
//     Label 1089  |type box 1136        |
//     Label 1001  |history box 1002     |
//                 |read-only box 1040   (where it is shown)
#pragma once

#include "framework/windows/windows_api.h"

struct FileDialogLayout {
  // In: where the system has put them.
  RECT nameBox;
  RECT nameLabel;
  RECT typeBox;
  RECT typeLabel;
  // In: their sizes. The history box without its list.
  RECT historyBox;
  RECT historyLabel;
  RECT readOnlyBox;

  // Moves the boxes to `column` and their labels to end 2 left of it, and puts the history's row and the
  // read-only box below them, in the distances that the upper rows have.
  void arrange(LONG column) noexcept;
};
