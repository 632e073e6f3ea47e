// SPDX-License-Identifier: MIT
// The arithmetic of the calendar, which needs no system.
#include "framework/platform/clock.h"

#include <chrono>

namespace platform {

std::uint64_t fileTimeOf(const CalendarTime& time) noexcept {
  namespace chr = std::chrono;
  // The calendar's types hold less than the fields do.
  if (time.year < kFirstYear || time.year > kLastYear || time.month > 12 || time.day > 31) return 0;
  if (time.hour > 23 || time.minute > 59 || time.second > 59 || time.milliseconds > 999) return 0;
  const chr::year_month_day date(chr::year(time.year), chr::month(time.month), chr::day(time.day));
  if (!date.ok()) return 0;

  using Units = chr::duration<std::int64_t, std::ratio<1, 10'000'000>>;
  constexpr chr::sys_days kEpoch = chr::year(1601) / 1 / 1;
  const chr::days day = chr::sys_days(date) - kEpoch;
  const Units sum = chr::duration_cast<Units>(day) + chr::hours(time.hour) + chr::minutes(time.minute) +
                    chr::seconds(time.second) + chr::milliseconds(time.milliseconds);
  return static_cast<std::uint64_t>(sum.count());
}

}  // namespace platform
