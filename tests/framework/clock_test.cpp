// SPDX-License-Identifier: MIT
#include "framework/platform/clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <vector>

#include "tests/support/GivenZone.h"

namespace {

using platform::CalendarTime;
using platform::fileTimeOf;
using platform::localTimeNow;
using platform::localTimeOf;

constexpr std::uint64_t kUnixEpoch = 116'444'736'000'000'000;
constexpr std::uint64_t kSecond = 10'000'000;

CalendarTime date(unsigned year, unsigned month, unsigned day) {
  CalendarTime time;
  time.year = static_cast<std::uint16_t>(year);
  time.month = static_cast<std::uint16_t>(month);
  time.day = static_cast<std::uint16_t>(day);
  return time;
}

CalendarTime at(std::uint16_t hour, std::uint16_t minute, std::uint16_t second, std::uint16_t milliseconds) {
  CalendarTime time = date(1970, 1, 1);
  time.hour = hour;
  time.minute = minute;
  time.second = second;
  time.milliseconds = milliseconds;
  return time;
}

TEST(FileTimeOf, CountsFrom1601) {
  EXPECT_EQ(fileTimeOf(CalendarTime()), 0u);
  EXPECT_EQ(fileTimeOf(date(1601, 1, 2)), 86'400 * kSecond);
  EXPECT_EQ(fileTimeOf(date(1970, 1, 1)), kUnixEpoch);
  EXPECT_EQ(fileTimeOf(at(23, 59, 59, 999)), kUnixEpoch + 86'400 * kSecond - 10'000);
  EXPECT_EQ(fileTimeOf(date(2000, 3, 1)) - fileTimeOf(date(2000, 2, 28)), 2 * 86'400 * kSecond);
  EXPECT_EQ(fileTimeOf(date(1900, 3, 1)) - fileTimeOf(date(1900, 2, 28)), 86'400 * kSecond);
}

TEST(FileTimeOf, ReachesToTheLastYear) {
  CalendarTime last = date(30827, 12, 31);
  last.hour = 23;
  last.minute = 59;
  last.second = 59;
  last.milliseconds = 999;
  EXPECT_EQ(fileTimeOf(last), 9'223'149'887'999'990'000u);
}

TEST(FileTimeOf, IsNothingForWhatIsNoDate) {
  for (const CalendarTime& time :
       {date(1600, 12, 31), date(30828, 1, 1), date(0, 1, 1), date(65535, 1, 1), date(2023, 0, 1),
        date(2023, 13, 1), date(2023, 1, 0), date(2023, 1, 32), date(2023, 4, 31), date(2023, 2, 29),
        date(1900, 2, 29), date(2023, 257, 1), date(2023, 1, 257), at(24, 0, 0, 0), at(0, 60, 0, 0),
        at(0, 0, 60, 0), at(0, 0, 0, 1000)})
    EXPECT_EQ(fileTimeOf(time), 0u) << time.year << '-' << time.month << '-' << time.day;
  EXPECT_NE(fileTimeOf(date(2024, 2, 29)), 0u);
  EXPECT_NE(fileTimeOf(date(2000, 2, 29)), 0u);
}

TEST(FileTimeOf, TakesTheFieldsWithoutTheDayOfTheWeek) {
  CalendarTime time = date(2024, 2, 29);
  const std::uint64_t expected = fileTimeOf(time);
  time.dayOfWeek = 999;
  EXPECT_EQ(fileTimeOf(time), expected);
}

// This program runs in the zone UTC.
class LocalTimeInUtc : public testing_support::InGivenZone {};

TEST_F(LocalTimeInUtc, GivesEachSecondOfEachEra) {
  for (const std::int64_t seconds :
       std::vector<std::int64_t>{-11'644'473'600, -100'000'000, -1, 0, 1, 951'782'400, 1'700'000'000,
                                 4'102'444'800, 910'670'515'199})
    EXPECT_EQ(fileTimeOf(localTimeOf(seconds)),
              static_cast<std::uint64_t>(seconds + 11'644'473'600) * kSecond)
        << seconds;
  EXPECT_EQ(localTimeOf(0).dayOfWeek, 4);
  EXPECT_EQ(localTimeOf(951'782'400).dayOfWeek, 2);
  EXPECT_EQ(localTimeOf(951'782'400).day, 29);
}

TEST(LocalTimeOf, IsTheFirstDayForWhatIsOutOfRange) {
  for (const std::int64_t seconds : {std::int64_t{-11'644'473'601}, std::int64_t{910'692'730'086}, INT64_MAX,
                                     INT64_MIN, INT64_MAX / 10'000'000 + 1}) {
    const CalendarTime time = localTimeOf(seconds);
    EXPECT_EQ(time.year, 1601) << seconds;
    EXPECT_EQ(time.month, 1);
    EXPECT_EQ(time.day, 1);
    EXPECT_EQ(time.hour + time.minute + time.second + time.milliseconds, 0);
  }
}

TEST(LocalTimeNow, IsTheSystemsTime) {
  const std::int64_t before = std::time(nullptr);
  const CalendarTime now = localTimeNow();
  const std::int64_t after = std::time(nullptr);
  EXPECT_GE(fileTimeOf(now) + kSecond, fileTimeOf(localTimeOf(before)));
  EXPECT_LT(fileTimeOf(now), fileTimeOf(localTimeOf(after)) + 2 * kSecond);
  EXPECT_EQ(now.dayOfWeek, localTimeOf(before).dayOfWeek);
  EXPECT_LT(now.milliseconds, 1000);
}

}  // namespace
