// SPDX-License-Identifier: MIT
// The arithmetic of the file dialog's layout.
#include <gtest/gtest.h>

#include "dialogs/FileDialogLayout.h"

// For the assertions, which look for it beside the type.
static bool operator==(const RECT& left, const RECT& right) { return EqualRect(&left, &right) != FALSE; }
static void PrintTo(const RECT& rect, std::ostream* out) {
  *out << '(' << rect.left << ',' << rect.top << ")-(" << rect.right << ',' << rect.bottom << ')';
}

namespace {

constexpr RECT rect(LONG left, LONG top, LONG right, LONG bottom) { return {left, top, right, bottom}; }

// Rows 30 apart, boxes 20 high and labels 26 high.
constexpr FileDialogLayout kStart{.nameBox = {113, 200, 380, 220},
                                  .nameLabel = {12, 204, 110, 230},
                                  .typeBox = {113, 230, 376, 250},
                                  .typeLabel = {12, 234, 100, 260},
                                  .historyBox = {0, 0, 50, 22},
                                  .historyLabel = {0, 0, 60, 13},
                                  .readOnlyBox = {7, 7, 157, 23}};

TEST(FileDialogLayout, MovesTheBoxesToTheColumn) {
  FileDialogLayout layout = kStart;
  layout.arrange(121);
  EXPECT_EQ(layout.nameBox, rect(121, 200, 388, 220));
  EXPECT_EQ(layout.typeBox, rect(121, 230, 384, 250));
}

TEST(FileDialogLayout, EndsTheLabelsTwoLeftOfTheColumn) {
  FileDialogLayout layout = kStart;
  layout.arrange(121);
  EXPECT_EQ(layout.nameLabel, rect(21, 204, 119, 230));
  EXPECT_EQ(layout.typeLabel, rect(31, 234, 119, 260));
}

TEST(FileDialogLayout, PutsTheHistoryBoxBelowTheTypeBoxInTheBoxesDistance) {
  FileDialogLayout layout = kStart;
  layout.arrange(121);
  EXPECT_EQ(layout.historyBox, rect(121, 260, 384, 282));
}

TEST(FileDialogLayout, PutsTheHistoryLabelBelowTheTypeLabelInTheLabelsDistance) {
  FileDialogLayout layout = kStart;
  layout.arrange(121);
  EXPECT_EQ(layout.historyLabel, rect(31, 264, 91, 277));
}

TEST(FileDialogLayout, PutsTheReadOnlyBoxBelowTheHistoryBoxInTheBoxesDistance) {
  FileDialogLayout layout = kStart;
  layout.arrange(121);
  EXPECT_EQ(layout.readOnlyBox, rect(121, 292, 271, 308));
}

TEST(FileDialogLayout, IsTheSameWhenArrangedAgain) {
  FileDialogLayout once = kStart;
  once.arrange(90);
  FileDialogLayout twice = once;
  twice.arrange(90);
  EXPECT_EQ(twice.nameLabel, once.nameLabel);
  EXPECT_EQ(twice.typeBox, once.typeBox);
  EXPECT_EQ(twice.historyBox, once.historyBox);
  EXPECT_EQ(twice.historyLabel, once.historyLabel);
  EXPECT_EQ(twice.readOnlyBox, once.readOnlyBox);
}

// Rows that overlap (a negative distance) stay as close as they are.
TEST(FileDialogLayout, KeepsANegativeDistance) {
  FileDialogLayout layout = kStart;
  layout.typeBox = {113, 215, 376, 235};
  layout.arrange(113);
  EXPECT_EQ(layout.historyBox.top, 230);
}

}  // namespace
