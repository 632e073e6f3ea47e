// SPDX-License-Identifier: MIT
// Where the controls of a CXFileDialog stand on the screen, and which one has the focus.
#include "tests/dialogs/XFileDialogTest.h"

namespace {

using dialog_test::Driver;

class XFileLayout : public XFileDialogTest {
 protected:
  static constexpr DWORD kFlags = OFN_HIDEREADONLY | OFN_ENABLESIZING;

  static LONG boxGap(const ShownFileDialog& shown) {
    return shown.rectOf(1136).top - shown.rectOf(1148).bottom;
  }
  static LONG labelGap(const ShownFileDialog& shown) {
    return shown.rectOf(1089).top - shown.rectOf(1090).bottom;
  }
  static void expectArranged(const ShownFileDialog& shown) {
    const LONG column = shown.rectOf(1148).left;
    EXPECT_EQ(shown.rectOf(1136).left, column);
    EXPECT_EQ(shown.rectOf(1090).right, column - 2);
    EXPECT_EQ(shown.rectOf(1089).right, column - 2);

    const RECT box = shown.rectOf(1002);
    EXPECT_EQ(box.left, shown.rectOf(1136).left);
    EXPECT_EQ(box.right, shown.rectOf(1136).right);
    EXPECT_EQ(box.top, shown.rectOf(1136).bottom + boxGap(shown));

    const RECT label = shown.rectOf(1001);
    EXPECT_EQ(label.left, shown.rectOf(1089).left);
    EXPECT_EQ(label.top, shown.rectOf(1089).bottom + labelGap(shown));
  }
  // The name box's left edge in the dialog's client co-ordinates.
  static LONG columnOf(const ShownFileDialog& shown) {
    POINT corner{};
    ClientToScreen(shown.dialog, &corner);
    return shown.rectOf(1148).left - corner.x;
  }
  LONG columnWith(LayoutMode mode) {
    LONG column = 0;
    CXFileDialog dialog(true, nullptr, nullptr, kFlags, nullptr, nullptr);
    dialog.m_nLayoutMode = mode;
    run(dialog, [&column](Driver&, const ShownFileDialog& shown) {
      column = columnOf(shown);
      expectArranged(shown);
    });
    return column;
  }
};

TEST_F(XFileLayout, TheOldOneIsEightToTheRightOfTheNewOne) {
  const LONG newer = columnWith(LayoutMode::newLayout);
  EXPECT_GT(newer, 0);
  EXPECT_EQ(columnWith(LayoutMode::oldLayout), newer + 8);
  EXPECT_EQ(columnWith(LayoutMode::bySystem), newer);
}

TEST_F(XFileLayout, FollowsTheDialogsSize) {
  CXFileDialog dialog(true, nullptr, nullptr, kFlags, nullptr, nullptr);
  run(dialog, [](Driver&, const ShownFileDialog& shown) {
    RECT dialogRect{};
    GetWindowRect(shown.dialog, &dialogRect);
    const RECT before = shown.rectOf(1002);
    SetWindowPos(shown.dialog, nullptr, 0, 0, dialogRect.right - dialogRect.left + 100,
                 dialogRect.bottom - dialogRect.top + 50, SWP_NOMOVE | SWP_NOZORDER);
    const RECT after = shown.rectOf(1002);
    EXPECT_EQ(after.right - before.right, 100);
    EXPECT_EQ(after.top - before.top, 50);
    EXPECT_EQ(after.left, before.left);
    EXPECT_EQ(after.bottom - after.top, before.bottom - before.top);
    expectArranged(shown);
  });
}

TEST_F(XFileLayout, PutsTheReadOnlyBoxBelowTheHistoryWhereItIsShown) {
  CXFileDialog dialog(true, nullptr, nullptr, OFN_ENABLESIZING, nullptr, nullptr);
  run(dialog, [](Driver&, const ShownFileDialog& shown) {
    expectArranged(shown);
    const RECT box = shown.rectOf(1040);
    EXPECT_EQ(box.left, shown.rectOf(1002).left);
    EXPECT_EQ(box.top, shown.rectOf(1002).bottom + boxGap(shown));
  });
}

TEST_F(XFileLayout, LeavesAHiddenReadOnlyBoxWhereItIs) {
  CXFileDialog dialog(true, nullptr, nullptr, kFlags, nullptr, nullptr);
  run(dialog, [](Driver&, const ShownFileDialog& shown) {
    EXPECT_NE(shown.rectOf(1040).top, shown.rectOf(1002).bottom + boxGap(shown));
  });
}

TEST_F(XFileLayout, GivesTheFocusToTheHistoryFirstAndToTheNameLater) {
  profile.write("Folder0", other);
  CXFileDialog dialog(true, nullptr, nullptr, kFlags, nullptr, nullptr);
  run(dialog, [](Driver& user, const ShownFileDialog& shown) {
    // Other tests of this program have come before, or else this dialog's start was the first.
    SetWindowPos(shown.dialog, nullptr, 0, 0, 700, 500, SWP_NOMOVE | SWP_NOZORDER);
    const HWND focus = shown.focus();
    EXPECT_TRUE(IsChild(user.control(shown.dialog, 1148), focus));
    DWORD first = 1;
    DWORD last = 1;
    user.send(shown.history, CB_GETEDITSEL, reinterpret_cast<WPARAM>(&first),
              reinterpret_cast<LPARAM>(&last));
    EXPECT_EQ(first, last) << "the history's text is not selected";
  });
}

}  // namespace
