// SPDX-License-Identifier: MIT
// Calendar times of listings and time replies, in UTC.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace internet {

struct CivilTime {
  int year = 0;
  int month = 0;  // 1 to 12
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;  // up to 60
};

// Seconds since 1970-01-01; none when there is no such time or the year is not within 1601 to 9999.
std::optional<std::int64_t> unixSeconds(const CivilTime& time) noexcept;

// The same for a time whose year is not known: the latest one that is not more than a day after `now`.
std::optional<std::int64_t> unixSecondsOfLatestYear(CivilTime time, std::int64_t now) noexcept;

// "Jan" (any case) -> 1; 0 when it is no English month.
int monthOfName(std::string_view name) noexcept;

// "hh:mm" or "hh:mm:ss" into `time`; other members are kept. False when it is neither.
bool readClock(std::string_view text, CivilTime& time) noexcept;

}  // namespace internet
