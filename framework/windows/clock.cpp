// SPDX-License-Identifier: MIT
#include "framework/platform/clock.h"

#include <array>
#include <mutex>

#include "framework/windows/windows_api.h"

namespace platform {
namespace {

CalendarTime fieldsOf(const SYSTEMTIME& time) noexcept {
  return {time.wYear, time.wMonth,  time.wDayOfWeek, time.wDay,
          time.wHour, time.wMinute, time.wSecond,    time.wMilliseconds};
}

// The rules of the current zone, as they are in a year. The system takes a good part of a millisecond for an
// answer, and a listing asks once per entry; an answer is good for a second, so that a change of the zone is
// seen.
bool zoneRules(WORD year, TIME_ZONE_INFORMATION& rules) noexcept {
  struct Answer {
    WORD year = 0;
    ULONGLONG time = 0;
    TIME_ZONE_INFORMATION rules{};
  };
  static std::array<Answer, 32> answers;
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  Answer& answer = answers[year % answers.size()];
  const ULONGLONG now = ::GetTickCount64();
  if (answer.year != year || now - answer.time > 1000) {
    if (!::GetTimeZoneInformationForYear(year, nullptr, &answer.rules)) return false;
    answer.year = year;
    answer.time = now;
  }
  rules = answer.rules;
  return true;
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
  TIME_ZONE_INFORMATION rules;
  if (!::FileTimeToSystemTime(&fileTime, &utc) || !zoneRules(utc.wYear, rules) ||
      !::SystemTimeToTzSpecificLocalTime(&rules, &utc, &local)) {
    return {};
  }
  return fieldsOf(local);
}

}  // namespace platform
