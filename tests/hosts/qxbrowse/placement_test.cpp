// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Placement.h"

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
  writePlacement(file, placement);
  const Placement read = readPlacement(file);
  EXPECT_TRUE(EqualRect(&read.window, &placement.window));
  EXPECT_TRUE(read.isMaximized);
  EXPECT_DOUBLE_EQ(read.splits.side, 0.25);
  EXPECT_DOUBLE_EQ(read.splits.bottom, 0.5);
}

TEST_F(ThePlacement, IsTheSystemsWhereNothingIsKnown) {
  const Placement read = readPlacement(file);
  EXPECT_TRUE(IsRectEmpty(&read.window));
  EXPECT_DOUBLE_EQ(read.splits.side, Splits().side);
}

TEST_F(ThePlacement, IsTheSystemsWhereWhatIsKnownMakesNoSense) {
  for (const RECT& window : {RECT{90000, 90000, 90500, 90500}, RECT{0, 0, 5, 5}, RECT{500, 500, 0, 0}}) {
    Placement placement;
    placement.window = window;
    placement.splits = {7, -3};
    writePlacement(file, placement);
    const Placement read = readPlacement(file);
    EXPECT_TRUE(IsRectEmpty(&read.window));
    EXPECT_DOUBLE_EQ(read.splits.side, Splits().side);
  }
}

}  // namespace
