// SPDX-License-Identifier: MIT
#include "support/TimeStamp.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string stampOf(const platform::CalendarTime& time) {
  char buffer[kTimeStampCapacity] = "";
  EXPECT_EQ(GetTimeStamp(time, buffer), buffer);
  return buffer;
}

// The stamp's fields in an order that compares as time does: "yyyymmdd hh:mm:ss".
std::string sortable(const std::string& stamp) {
  EXPECT_EQ(stamp.size(), 19u);
  return stamp.substr(6, 4) + stamp.substr(3, 2) + stamp.substr(0, 2) + stamp.substr(10);
}

TEST(TimeStamp, DayMonthYearHourMinuteSecond) {
  EXPECT_EQ(stampOf({.year = 2024, .month = 12, .day = 31, .hour = 23, .minute = 58, .second = 59}),
            "31.12.2024 23:58:59");
}

TEST(TimeStamp, PadsEveryFieldWithZeros) {
  EXPECT_EQ(stampOf({.year = 807, .month = 2, .day = 3, .hour = 4, .minute = 5, .second = 6}),
            "03.02.0807 04:05:06");
}

TEST(TimeStamp, LeavesMillisecondsAndWeekdayOut) {
  EXPECT_EQ(stampOf({.year = 2000, .month = 1, .dayOfWeek = 6, .day = 1, .milliseconds = 999}),
            "01.01.2000 00:00:00");
}

TEST(TimeStamp, FieldsThatAreNoDateDoNotOverrunTheBuffer) {
  EXPECT_LT(stampOf({65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535}).size(), kTimeStampCapacity);
}

TEST(TimeStamp, TheLocalStampLiesBetweenTheLocalTimesAroundIt) {
  char buffer[kTimeStampCapacity] = "";
  const std::string before = stampOf(platform::localTimeNow());
  EXPECT_EQ(GetLocalTimeStamp(buffer), buffer);
  const std::string after = stampOf(platform::localTimeNow());
  EXPECT_LE(sortable(before), sortable(buffer));
  EXPECT_LE(sortable(buffer), sortable(after));
}

}  // namespace
