// SPDX-License-Identifier: MIT
#include "framework/platform/clock.h"

#include <ctime>

namespace platform {
namespace {

CalendarTime localTime(std::time_t seconds, long nanoseconds) noexcept {
  std::tm fields{};
  if (::localtime_r(&seconds, &fields) == nullptr) return {};
  const std::int64_t year = std::int64_t{fields.tm_year} + 1900;
  if (year < kFirstYear || year > kLastYear) return {};
  const auto narrow = [](long value) { return static_cast<std::uint16_t>(value); };
  CalendarTime time;
  time.year = narrow(year);
  time.month = narrow(fields.tm_mon + 1);
  time.dayOfWeek = narrow(fields.tm_wday);
  time.day = narrow(fields.tm_mday);
  time.hour = narrow(fields.tm_hour);
  time.minute = narrow(fields.tm_min);
  time.second = narrow(fields.tm_sec);
  time.milliseconds = narrow(nanoseconds / 1'000'000);
  return time;
}

}  // namespace

CalendarTime localTimeNow() noexcept {
  std::timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return localTime(now.tv_sec, now.tv_nsec);
}

CalendarTime localTimeOf(std::int64_t unixSeconds) noexcept { return localTime(unixSeconds, 0); }

}  // namespace platform
