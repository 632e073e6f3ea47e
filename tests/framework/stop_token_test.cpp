// SPDX-License-Identifier: MIT
#include "framework/platform/stop_token.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

#include "framework/platform/last_error.h"

namespace {

using platform::OperationStopped;
using platform::StopToken;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(StopToken, StaysRaised) {
  StopToken token;
  EXPECT_FALSE(token.raised());
  EXPECT_FALSE(token.wait(milliseconds(0)));
  token.raise();
  token.raise();
  EXPECT_TRUE(token.raised());
  EXPECT_TRUE(token.wait(milliseconds(0)));
  EXPECT_TRUE(token.wait(milliseconds::max()));
}

TEST(StopToken, AWaitLastsItsTime) {
  const StopToken token;
  const auto start = steady_clock::now();
  EXPECT_FALSE(token.wait(milliseconds(20)));
  EXPECT_GE(steady_clock::now() - start, milliseconds(20));
}

TEST(StopToken, ARaiseEndsTheLongestWait) {
  StopToken token;
  std::thread raiser([&token] { token.raise(); });
  EXPECT_TRUE(token.wait(milliseconds::max()));
  raiser.join();
}

TEST(StopToken, ANegativeWaitOnlyAsks) { EXPECT_FALSE(StopToken().wait(milliseconds::min())); }

TEST(StopTokenScope, NestsAndPutsBack) {
  StopToken outer;
  StopToken inner;
  EXPECT_EQ(StopToken::current(), nullptr);
  {
    const StopToken::Scope first(&outer);
    EXPECT_EQ(StopToken::current(), &outer);
    {
      const StopToken::Scope second(&inner);
      EXPECT_EQ(StopToken::current(), &inner);
      const StopToken::Scope unstoppable(nullptr);
      EXPECT_EQ(StopToken::current(), nullptr);
    }
    EXPECT_EQ(StopToken::current(), &outer);
  }
  EXPECT_EQ(StopToken::current(), nullptr);
}

TEST(StopTokenScope, BelongsToItsThread) {
  StopToken token;
  const StopToken::Scope scope(&token);
  std::thread([] { EXPECT_EQ(StopToken::current(), nullptr); }).join();
}

TEST(StopTokenScope, FirstUseOnAThreadLeavesTheLastErrorAlone) {
  std::thread([] {
    platform::setLastError(77);
    EXPECT_EQ(StopToken::current(), nullptr);
    EXPECT_EQ(platform::lastError(), 77u);
    StopToken token;
    const StopToken::Scope scope(&token);
    platform::setLastError(77);
    EXPECT_FALSE(platform::stopRequested());
    token.raise();
    EXPECT_TRUE(platform::stopRequested());
    EXPECT_EQ(platform::lastError(), 77u);
  }).join();
}

TEST(StopRequested, IsFalseWithoutAToken) {
  EXPECT_FALSE(platform::stopRequested());
  EXPECT_NO_THROW(platform::throwIfStopped());
}

TEST(StopRequested, FollowsTheToken) {
  StopToken token;
  const StopToken::Scope scope(&token);
  EXPECT_FALSE(platform::stopRequested());
  EXPECT_NO_THROW(platform::throwIfStopped());
  token.raise();
  EXPECT_TRUE(platform::stopRequested());
  EXPECT_THROW(platform::throwIfStopped(), OperationStopped);
}

TEST(StoppableSleep, LastsItsTimeWithAndWithoutAToken) {
  StopToken token;
  for (StopToken* const own : {static_cast<StopToken*>(nullptr), &token}) {
    const StopToken::Scope scope(own);
    const auto start = steady_clock::now();
    platform::stoppableSleep(milliseconds(15));
    EXPECT_GE(steady_clock::now() - start, milliseconds(15));
    platform::stoppableSleep(milliseconds(0));
    platform::stoppableSleep(milliseconds(-1));
  }
}

TEST(StoppableSleep, ThrowsWhenTheTokenIsRaised) {
  StopToken token;
  const StopToken::Scope scope(&token);
  std::thread raiser([&token] { token.raise(); });
  EXPECT_THROW(platform::stoppableSleep(std::chrono::hours(1)), OperationStopped);
  EXPECT_THROW(platform::stoppableSleep(milliseconds(0)), OperationStopped);
  raiser.join();
}

}  // namespace
