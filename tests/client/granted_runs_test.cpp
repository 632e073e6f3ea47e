// SPDX-License-Identifier: MIT
// How many runs a call gets for the failures of its runs, with a counter that OnIPError arms each time.
#include <gtest/gtest.h>

#include <vector>

#include "Src/RetryLimit.h"

namespace {

constexpr RunFailure kBroken{.error = 12030};
constexpr RunFailure kTimedOut{.error = 12002};
constexpr RunFailure kLost{.error = 12030, .connectionLost = true};

// The runs that follow the first, which fail one after the other.
int runsAfter(const std::vector<RunFailure>& failures, std::uint32_t retries = 0) {
  RetryLimit limit(retries);
  std::uint32_t counter = retries;
  int runs = 0;
  for (const RunFailure& failure : failures) {
    if (counter == 0) counter = 1;
    if (!limit.TakeRun(counter, failure)) break;
    ++runs;
  }
  return runs;
}

TEST(GrantedRuns, AreThreeInAll) { EXPECT_EQ(runsAfter(std::vector(10, kBroken)), 3); }

TEST(GrantedRuns, AreOneAfterATimeOut) { EXPECT_EQ(runsAfter({kTimedOut, kTimedOut}), 1); }

TEST(GrantedRuns, CountATimeOutAmongTheThree) {
  EXPECT_EQ(runsAfter({kTimedOut, kBroken, kBroken, kBroken}), 3);
  EXPECT_EQ(runsAfter({kBroken, kBroken, kTimedOut, kBroken}), 3);
  EXPECT_EQ(runsAfter({kBroken, kTimedOut, kTimedOut}), 2);
  EXPECT_EQ(runsAfter({kTimedOut, kBroken, kTimedOut}), 2);
}

TEST(GrantedRuns, AreNoneOnAConnectionThatIsLost) {
  EXPECT_EQ(runsAfter({kLost}), 0);
  EXPECT_EQ(runsAfter({kBroken, kLost}), 1);
}

TEST(GrantedRuns, ComeBehindTheHostsOwn) {
  EXPECT_EQ(runsAfter(std::vector(10, kTimedOut), 4), 4 + 1);
  EXPECT_EQ(runsAfter(std::vector(10, kLost), 4), 4);
  EXPECT_EQ(runsAfter(std::vector(10, kBroken), 4), 4 + 3);
}

TEST(GrantedRuns, AreNotTakenFromACounterThatNobodyHasArmed) {
  std::uint32_t counter = 0;
  EXPECT_FALSE(RetryLimit(0).TakeRun(counter, kBroken));
  EXPECT_EQ(counter, 0u);
}

}  // namespace
