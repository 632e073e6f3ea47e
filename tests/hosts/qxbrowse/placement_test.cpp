// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/Placement.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/ScratchFolder.h"

namespace {

using namespace browse;

class ThePlacement : public testing::Test {
 protected:
  const testing_support::ScratchFolder scratch;
  const std::filesystem::path file = scratch.path() / "folder" / "window.ini";
};

TEST_F(ThePlacement, IsRememberedInAFolderThatIsMade) {
  Placement placement;
  placement.window = {10, 20, 510, 420};
  placement.isMaximized = true;
  placement.splits = {0.25, 0.5};
  placement.panes[0] = {{210, 70, 60, 50}, {Column::size, true}};
  placement.panes[1].sorting = {Column::time, false};
  placement.queue = {90, 80, 70, 60, 50, 40, 300};
  writePlacement(file, placement);
  const Placement read = readPlacement(file);
  EXPECT_TRUE(EqualRect(&read.window, &placement.window));
  EXPECT_TRUE(read.isMaximized);
  EXPECT_DOUBLE_EQ(read.splits.side, 0.25);
  EXPECT_DOUBLE_EQ(read.splits.bottom, 0.5);
  EXPECT_EQ(read.panes[0].widths, placement.panes[0].widths);
  EXPECT_EQ(read.panes[0].sorting, placement.panes[0].sorting);
  EXPECT_EQ(read.panes[1].sorting, placement.panes[1].sorting);
  EXPECT_EQ(read.queue, placement.queue);
  EXPECT_FALSE(read.isBroken);
}

TEST_F(ThePlacement, IsTheSystemsWhereNothingIsKnown) {
  const Placement read = readPlacement(file);
  EXPECT_TRUE(IsRectEmpty(&read.window));
  EXPECT_DOUBLE_EQ(read.splits.side, Splits().side);
  EXPECT_FALSE(read.isBroken);
}

TEST_F(ThePlacement, IsTheSystemsWhereWhatIsKnownMakesNoSense) {
  for (const RECT& window : {RECT{0, 0, 5, 5}, RECT{500, 500, 0, 0}}) {
    Placement placement;
    placement.window = window;
    placement.splits = {7, -3};
    writePlacement(file, placement);
    const Placement read = readPlacement(file);
    EXPECT_TRUE(IsRectEmpty(&read.window));
    EXPECT_DOUBLE_EQ(read.splits.side, Splits().side);
    EXPECT_TRUE(read.isBroken) << "no window has such shares";
  }
}

TEST_F(ThePlacement, IsBrokenByWhatIsNoNumberAndByWhatIsNoIniFile) {
  std::filesystem::create_directories(file.parent_path());
  for (const char* content :
       {"[window]\nleft=here\n", "[window]\nside=2000\n", "[window]\nleft=1\n[local]\nsortedBy=9\n",
        "[window]\nleft=1\n[server]\nname=-3\n", "[window]\nleft=1\n[queue]\nrate=wide\n",
        "\x7f\x45LF, and more of it"}) {
    std::ofstream(file, std::ios::binary) << content;
    EXPECT_TRUE(readPlacement(file).isBroken) << content;
  }
  std::ofstream(file, std::ios::binary) << "[window]\nmaximized=1\n";
  EXPECT_FALSE(readPlacement(file).isBroken) << "as an older program wrote it";
}

// A window that stood on a screen that is gone lost its size as well.
TEST_F(ThePlacement, IsOnTheNearestScreenWhereItsOwnIsGone) {
  Placement placement;
  placement.window = {90000, 90000, 90300, 90200};
  writePlacement(file, placement);
  const RECT read = readPlacement(file).window;
  EXPECT_EQ(read.right - read.left, 300);
  EXPECT_EQ(read.bottom - read.top, 200);
  EXPECT_NE(MonitorFromRect(&read, MONITOR_DEFAULTTONULL), nullptr);
}

TEST(AFittedWindow, IsMovedNoFartherThanItHasToBe) {
  const RECT screen{-800, 0, 0, 600};
  const auto isFitted = [&screen](const RECT& window, const RECT& wanted) {
    const RECT moved = fitted(window, screen);
    return EqualRect(&moved, &wanted) != FALSE;
  };
  EXPECT_TRUE(isFitted({-700, 100, -300, 400}, {-700, 100, -300, 400}));
  EXPECT_TRUE(isFitted({-200, 500, 100, 700}, {-300, 400, 0, 600}));
  EXPECT_TRUE(isFitted({-2000, -50, 3000, 300}, {-800, 0, 0, 350})) << "no wider than the screen";
}

}  // namespace
