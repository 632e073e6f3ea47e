// SPDX-License-Identifier: MIT
// Our calendar arithmetic agrees with the system's own.
#include <gtest/gtest.h>

#include "framework/platform/clock.h"
#include "framework/windows/windows_api.h"

namespace {

TEST(FileTimeOf, AgreesWithTheSystem) {
  constexpr std::int64_t kStep = 86'400ll * 12'340 + 56'789;
  constexpr std::int64_t kFirst = -11'644'473'600;
  constexpr std::int64_t kLast = 910'670'000'000;
  int count = 0;
  for (std::int64_t seconds = kFirst; seconds < kLast; seconds += kStep, ++count) {
    const platform::CalendarTime time = platform::localTimeOf(seconds);
    const SYSTEMTIME system{time.year, time.month,  time.dayOfWeek, time.day,
                            time.hour, time.minute, time.second,    time.milliseconds};
    FILETIME expected{};
    ASSERT_TRUE(::SystemTimeToFileTime(&system, &expected)) << seconds;
    ASSERT_EQ(platform::fileTimeOf(time),
              (static_cast<std::uint64_t>(expected.dwHighDateTime) << 32) | expected.dwLowDateTime)
        << seconds;
  }
  EXPECT_GT(count, 800);
}

}  // namespace
