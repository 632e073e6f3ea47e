// SPDX-License-Identifier: MIT
// This program runs in the zone of New York, whose summer time began in April until 2006 and in March since.
#include "framework/platform/clock.h"
#include "tests/support/GivenZone.h"

namespace {

using platform::localTimeOf;

class LocalTimeOfZone : public testing_support::InGivenZone {};

TEST_F(LocalTimeOfZone, FollowsTheSeason) {
  EXPECT_EQ(localTimeOf(1'690'000'000).hour, 0);   // 2023-07-22 04:26:40 UTC
  EXPECT_EQ(localTimeOf(1'700'000'000).hour, 17);  // 2023-11-14 22:13:20 UTC
}

TEST_F(LocalTimeOfZone, FollowsTheRulesOfTheYear) {
  EXPECT_EQ(localTimeOf(1'142'856'000).hour, 7);  // 2006-03-20 12:00 UTC
  EXPECT_EQ(localTimeOf(1'205'928'000).hour, 8);  // 2008-03-19 12:00 UTC
}

TEST_F(LocalTimeOfZone, SwitchesAtTheSecond) {
  EXPECT_EQ(localTimeOf(1'710'053'999).hour, 1);  // 2024-03-10 06:59:59 UTC
  EXPECT_EQ(localTimeOf(1'710'054'000).hour, 3);
}

TEST_F(LocalTimeOfZone, GoesBackBeyondTheEpoch) {
  const platform::CalendarTime time = localTimeOf(-1);
  EXPECT_EQ(time.year, 1969);
  EXPECT_EQ(time.month, 12);
  EXPECT_EQ(time.day, 31);
  EXPECT_EQ(time.dayOfWeek, 3);
  EXPECT_EQ(time.hour, 18);
  EXPECT_EQ(time.second, 59);
}

}  // namespace
