// SPDX-License-Identifier: MIT
#include "framework/platform/clock.h"

#include "framework/windows/windows_api.h"

namespace platform {
namespace {

CalendarTime fieldsOf(const SYSTEMTIME& time) noexcept {
  return {time.wYear, time.wMonth,  time.wDayOfWeek, time.wDay,
          time.wHour, time.wMinute, time.wSecond,    time.wMilliseconds};
}

}  // namespace

CalendarTime localTimeNow() noexcept {
  SYSTEMTIME now;
  ::GetLocalTime(&now);
  return fieldsOf(now);
}

CalendarTime localTimeOf(std::int64_t unixSeconds) noexcept {
  constexpr std::int64_t kFrom1601To1970 = 11'644'473'600;  // seconds
  constexpr std::int64_t kUnitsPerSecond = 10'000'000;
  constexpr std::int64_t kLast = INT64_MAX / kUnitsPerSecond - kFrom1601To1970;
  if (unixSeconds < -kFrom1601To1970 || unixSeconds > kLast) return {};

  ULARGE_INTEGER units;
  units.QuadPart = static_cast<ULONGLONG>((unixSeconds + kFrom1601To1970) * kUnitsPerSecond);
  const FILETIME fileTime{units.LowPart, units.HighPart};
  SYSTEMTIME utc;
  SYSTEMTIME local;
  TIME_ZONE_INFORMATION rules;  // of the current zone, as they are in that year
  if (!::FileTimeToSystemTime(&fileTime, &utc) ||
      !::GetTimeZoneInformationForYear(utc.wYear, nullptr, &rules) ||
      !::SystemTimeToTzSpecificLocalTime(&rules, &utc, &local)) {
    return {};
  }
  return fieldsOf(local);
}

}  // namespace platform
