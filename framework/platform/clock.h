// SPDX-License-Identifier: MIT
// Contract: wall-clock time as calendar fields. For durations use std::chrono::steady_clock.
#pragma once

#include <cstdint>

namespace platform {

// The years that file times can hold.
inline constexpr int kFirstYear = 1601;
inline constexpr int kLastYear = 30827;

struct CalendarTime {
  std::uint16_t year = 1601;
  std::uint16_t month = 1;      // 1 to 12
  std::uint16_t dayOfWeek = 1;  // 0 = Sunday
  std::uint16_t day = 1;
  std::uint16_t hour = 0;
  std::uint16_t minute = 0;
  std::uint16_t second = 0;
  std::uint16_t milliseconds = 0;
};

// The current local time.
CalendarTime localTimeNow() noexcept;

// Seconds since 1970-01-01 00:00 UTC as local calendar time, in the zone rules of that date.
// Out-of-range values give 1601-01-01.
CalendarTime localTimeOf(std::int64_t unixSeconds) noexcept;

// Calendar fields taken as they stand, in 100 ns units since 1601-01-01; 0 for fields that are no date.
std::uint64_t fileTimeOf(const CalendarTime& time) noexcept;

}  // namespace platform
