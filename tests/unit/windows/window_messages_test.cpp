// SPDX-License-Identifier: MIT
// What only the Windows queue has: windows, message ranges, quit messages.
#include <gtest/gtest.h>

#include <vector>

#include "support/Messages.h"
#include "tests/unit/windows/TestWindow.h"

namespace {

using Numbers = std::vector<unsigned>;

class WindowMessages : public testing::Test {
 protected:
  Numbers one;
  Numbers two;
  TestWindow first{[this](unsigned number) { one.push_back(number); }};
  TestWindow second{[this](unsigned number) { two.push_back(number); }};

  void postToBoth() {
    for (const unsigned number : {1u, 2u, 3u}) {
      first.post(number);
      second.post(number);
    }
  }
  void TearDown() override { PumpMessages(nullptr, 0, 0); }
};

TEST_F(WindowMessages, AWindowsMessagesAreTakenAndTheOthersStay) {
  postToBoth();
  EXPECT_TRUE(PumpMessages(first.handle(), 0, 0));
  EXPECT_EQ(one, (Numbers{1, 2, 3}));
  EXPECT_EQ(two, Numbers{});
}

TEST_F(WindowMessages, ARangeLimitsWhatIsTakenFromAWindow) {
  postToBoth();
  EXPECT_TRUE(PumpMessages(second.handle(), WM_APP + 2, WM_APP + 2));
  EXPECT_EQ(two, (Numbers{2}));
}

TEST_F(WindowMessages, WithoutAWindowTheWholeQueueIsEmptied) {
  postToBoth();
  EXPECT_TRUE(PumpMessages(nullptr, 0, 0));
  EXPECT_EQ(one, (Numbers{1, 2, 3}));
  EXPECT_EQ(two, (Numbers{1, 2, 3}));
}

TEST_F(WindowMessages, AWindowThatNoLongerExistsPumpsTheWholeQueueWhateverTheRange) {
  const HWND gone = second.handle();
  second.destroy();
  for (const unsigned number : {1u, 2u}) first.post(number);
  EXPECT_TRUE(PumpMessages(gone, WM_APP + 2, WM_APP + 2));
  EXPECT_EQ(one, (Numbers{1, 2}));
}

TEST_F(WindowMessages, AQuitMessageIsTakenLikeAnyOther) {
  PostQuitMessage(3);
  first.post(1);
  EXPECT_TRUE(PumpMessages(nullptr, 0, 0));
  EXPECT_EQ(one, (Numbers{1}));
  MSG message;
  EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
}

}  // namespace
