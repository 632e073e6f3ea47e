// SPDX-License-Identifier: MIT
#include "framework/internet/listing/CivilTime.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "framework/internet/listing/FtpListing.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::int64_t kDaySeconds = 86'400;

int yearOf(std::int64_t seconds) noexcept {
  using namespace std::chrono;
  // A clock that is far off must not overflow the calendar.
  constexpr std::int64_t kMaxDays = 3'000'000;
  const std::int64_t count = std::clamp(seconds / kDaySeconds, -kMaxDays, kMaxDays);
  return int{year_month_day(sys_days(days(count))).year()};
}

bool readTwoDigits(std::string_view text, std::size_t at, int& number) noexcept {
  if (text.size() < at + 2 || !ascii::isDigit(text[at]) || !ascii::isDigit(text[at + 1])) return false;
  number = (text[at] - '0') * 10 + (text[at + 1] - '0');
  return true;
}

}  // namespace

std::optional<std::int64_t> unixSeconds(const CivilTime& time) noexcept {
  using namespace std::chrono;
  if (time.year < 1601 || time.year > 9999 || time.month < 1 || time.day < 1 || time.hour < 0 ||
      time.hour > 23 || time.minute < 0 || time.minute > 59 || time.second < 0 || time.second > 60) {
    return std::nullopt;
  }
  const year_month_day date(year(time.year), month(static_cast<unsigned>(time.month)),
                            day(static_cast<unsigned>(time.day)));
  if (!date.ok()) return std::nullopt;
  const std::int64_t dayNumber = sys_days(date).time_since_epoch().count();
  return dayNumber * kDaySeconds + std::int64_t{time.hour} * 3600 + std::int64_t{time.minute} * 60 +
         time.second;
}

std::optional<std::int64_t> unixSecondsOfLatestYear(CivilTime time, std::int64_t now) noexcept {
  // Eight years back there was a 29 February, whatever the century.
  constexpr int kYearsBack = 8;
  // The day ahead of `now` may lie in the next year.
  const int latest = yearOf(now) + 1;
  for (time.year = latest; time.year >= latest - 1 - kYearsBack; --time.year) {
    const std::optional<std::int64_t> seconds = unixSeconds(time);
    if (seconds && *seconds - kDaySeconds <= now) return seconds;
  }
  return std::nullopt;
}

int monthOfName(std::string_view name) noexcept {
  constexpr std::string_view kMonths = "janfebmaraprmayjunjulaugsepoctnovdec";
  constexpr std::size_t kLength = 3;
  if (name.size() != kLength) return 0;
  const std::array<char, kLength> lower{ascii::lowerCase(name[0]), ascii::lowerCase(name[1]),
                                        ascii::lowerCase(name[2])};
  for (std::size_t at = 0; at < kMonths.size(); at += kLength) {
    if (std::equal(lower.begin(), lower.end(), kMonths.begin() + at))
      return static_cast<int>(at / kLength) + 1;
  }
  return 0;
}

bool readClock(std::string_view text, CivilTime& time) noexcept {
  const std::size_t colon = text.find(':');
  if (colon == 0 || colon > 2 || !ascii::readNumber(text.substr(0, colon), time.hour)) return false;
  const std::string_view rest = text.substr(colon + 1);
  if (!readTwoDigits(rest, 0, time.minute)) return false;
  time.second = 0;
  return rest.size() == 2 || (rest.size() == 5 && rest[2] == ':' && readTwoDigits(rest, 3, time.second));
}

std::int64_t parseMdtmTime(std::string_view text) {
  constexpr std::size_t kDigits = 14;
  if (text.size() < kDigits) return 0;
  if (text.size() > kDigits) {
    const std::string_view fraction = text.substr(kDigits + 1);
    if (text[kDigits] != '.' || !std::all_of(fraction.begin(), fraction.end(), ascii::isDigit)) return 0;
  }
  CivilTime time;
  const bool read = ascii::readNumber(text.substr(0, 4), time.year) && readTwoDigits(text, 4, time.month) &&
                    readTwoDigits(text, 6, time.day) && readTwoDigits(text, 8, time.hour) &&
                    readTwoDigits(text, 10, time.minute) && readTwoDigits(text, 12, time.second);
  return read ? unixSeconds(time).value_or(0) : 0;
}

}  // namespace internet
