// SPDX-License-Identifier: MIT
// The first CXFileDialog of a process starts in its history box, all others with the name. A program of its
// own, because "the first" comes once.
#include "tests/dialogs/XFileDialogTest.h"

namespace {

constexpr DWORD kFlags = OFN_HIDEREADONLY | OFN_ENABLESIZING;

class FirstFocus : public XFileDialogTest {
 protected:
  // Which of the two boxes has the focus when the dialog has come up.
  int boxWithFocus() {
    CXFileDialog dialog(true, nullptr, nullptr, kFlags, nullptr, nullptr);
    int box = 0;
    run(dialog, [&box](Driver&, const ShownFileDialog& shown) {
      if (IsChild(shown.history, shown.focus())) box = 1002;
      if (IsChild(GetDlgItem(shown.dialog, 1148), shown.focus())) box = 1148;
    });
    return box;
  }
};

TEST_F(FirstFocus, IsTheHistorysOnceAndTheNamesFromThenOn) {
  EXPECT_EQ(boxWithFocus(), 1002);
  EXPECT_EQ(boxWithFocus(), 1148);
  EXPECT_EQ(boxWithFocus(), 1148);
}

}  // namespace
