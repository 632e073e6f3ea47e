// SPDX-License-Identifier: MIT
#include "framework/platform/message_queue.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/unit/windows/TestWindow.h"

namespace {

using platform::dispatchOneMessage;
using platform::messageWaiting;
using platform::takeAndDispatchMessage;
using Numbers = std::vector<unsigned>;

class MessageQueue : public testing::Test {
 protected:
  Numbers one;
  Numbers two;
  TestWindow first{[this](unsigned number) { one.push_back(number); }};
  TestWindow second{[this](unsigned number) { two.push_back(number); }};

  void SetUp() override { emptyTheQueue(); }
  void TearDown() override { emptyTheQueue(); }
  static void emptyTheQueue() {
    while (dispatchOneMessage(nullptr, 0, 0)) {
    }
  }
};

TEST_F(MessageQueue, KnowsLiveWindows) {
  EXPECT_TRUE(platform::isWindow(first.handle()));
  EXPECT_FALSE(platform::isWindow(nullptr));
  const platform::WindowHandle gone = second.handle();
  second.destroy();
  EXPECT_FALSE(platform::isWindow(gone));
}

TEST_F(MessageQueue, AskingDoesNotTake) {
  EXPECT_FALSE(messageWaiting());
  first.post(1);
  EXPECT_TRUE(messageWaiting());
  EXPECT_TRUE(messageWaiting());
  EXPECT_EQ(one, Numbers{});
}

TEST_F(MessageQueue, TakesOneMessageAtATimeInOrder) {
  first.post(1);
  second.post(2);
  takeAndDispatchMessage();
  EXPECT_EQ(one, (Numbers{1}));
  EXPECT_EQ(two, Numbers{});
  takeAndDispatchMessage();
  EXPECT_EQ(two, (Numbers{2}));
  EXPECT_FALSE(messageWaiting());
}

TEST_F(MessageQueue, TakesTheMessagesOfTheThreadItself) {
  ASSERT_TRUE(::PostThreadMessageA(::GetCurrentThreadId(), WM_APP, 0, 0));
  EXPECT_TRUE(messageWaiting());
  takeAndDispatchMessage();
  EXPECT_FALSE(messageWaiting());
}

TEST_F(MessageQueue, TakesAQuitMessageLikeAnyOther) {
  ::PostQuitMessage(3);
  EXPECT_TRUE(messageWaiting());
  takeAndDispatchMessage();
  EXPECT_FALSE(messageWaiting());
  ::PostQuitMessage(3);
  EXPECT_TRUE(dispatchOneMessage(nullptr, 0, 0));
  EXPECT_FALSE(messageWaiting());
}

TEST_F(MessageQueue, DispatchesByWindow) {
  first.post(1);
  second.post(2);
  EXPECT_TRUE(dispatchOneMessage(second.handle(), 0, 0));
  EXPECT_EQ(two, (Numbers{2}));
  EXPECT_FALSE(dispatchOneMessage(second.handle(), 0, 0));
  EXPECT_EQ(one, Numbers{});
  EXPECT_TRUE(dispatchOneMessage(nullptr, 0, 0));
  EXPECT_EQ(one, (Numbers{1}));
  EXPECT_FALSE(dispatchOneMessage(nullptr, 0, 0));
}

TEST_F(MessageQueue, DispatchesByRange) {
  for (const unsigned number : {1u, 2u, 3u}) first.post(number);
  EXPECT_TRUE(dispatchOneMessage(nullptr, WM_APP + 2, WM_APP + 2));
  EXPECT_FALSE(dispatchOneMessage(first.handle(), WM_APP + 4, WM_APP + 9));
  EXPECT_TRUE(dispatchOneMessage(first.handle(), WM_APP + 2, WM_APP + 3));
  EXPECT_EQ(one, (Numbers{2, 3}));
}

TEST_F(MessageQueue, AnotherThreadHasItsOwn) {
  first.post(1);
  std::thread([] {
    EXPECT_FALSE(messageWaiting());
    EXPECT_FALSE(dispatchOneMessage(nullptr, 0, 0));
  }).join();
  EXPECT_EQ(one, Numbers{});
}

// A handler may run a wait loop of its own.
TEST_F(MessageQueue, MayBeEnteredAgainByAHandler) {
  TestWindow nesting([](unsigned) {
    while (messageWaiting()) takeAndDispatchMessage();
  });
  nesting.post(1);
  first.post(1);
  takeAndDispatchMessage();
  EXPECT_EQ(one, (Numbers{1}));
  EXPECT_FALSE(messageWaiting());
}

}  // namespace
