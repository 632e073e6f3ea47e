// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/Layout.h"

#include <gtest/gtest.h>

namespace {

using namespace browse;

constexpr RECT kRoom{0, 30, 1000, 730};

int width(const RECT& area) { return static_cast<int>(area.right - area.left); }
int height(const RECT& area) { return static_cast<int>(area.bottom - area.top); }

TEST(TheLayout, SharesTheRoom) {
  const Layout layout = arrange(kRoom, {0.25, 0.5}, 96);
  EXPECT_NEAR(width(layout.local), 248, 8);
  EXPECT_NEAR(height(layout.local), 347, 8);
  EXPECT_EQ(layout.local.right, layout.sideSplitter.left);
  EXPECT_EQ(layout.sideSplitter.right, layout.server.left);
  EXPECT_EQ(layout.local.bottom, layout.bottomSplitter.top);
  EXPECT_EQ(layout.bottomSplitter.bottom, layout.bottom.top);
}

TEST(TheLayout, LeavesEachPartUsable) {
  const Layout layout = arrange(kRoom, {0, 1}, 96);
  EXPECT_GE(width(layout.local), 110);
  EXPECT_GE(height(layout.bottom), 50);
}

TEST(TheLayout, GrowsWithTheScreensDotsPerInch) {
  const Layout plain = arrange(kRoom, {}, 96);
  const Layout fine = arrange(kRoom, {}, 192);
  EXPECT_EQ(width(fine.sideSplitter), 2 * width(plain.sideSplitter));
}

TEST(TheLayout, BearsARoomOfNoSize) {
  const Layout layout = arrange({0, 0, 10, 5}, {}, 96);
  EXPECT_LE(width(layout.local), 10);
}

TEST(ASplitter, FollowsTheMouseWithinTheRoom) {
  EXPECT_DOUBLE_EQ(dragSide(kRoom, {}, {250, 400}).side, 0.25);
  EXPECT_DOUBLE_EQ(dragSide(kRoom, {}, {-9, 400}).side, 0.0);
  EXPECT_DOUBLE_EQ(dragBottom(kRoom, {}, {500, 380}).bottom, 0.5);
  EXPECT_DOUBLE_EQ(dragBottom(kRoom, {}, {500, 9999}).bottom, 1.0);
  EXPECT_DOUBLE_EQ(dragBottom({}, {}, {1, 1}).bottom, 0.5) << "no room at all";
}

}  // namespace
