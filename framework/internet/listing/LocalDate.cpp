// SPDX-License-Identifier: MIT
// Dates as `ls` of GNU coreutils writes them in the languages of its users: month names with and without full
// stops, "27. okt", "27.10.", "10-27", "2024 jan 9", the signs of East Asia for year, month and day; the
// clock as "08:05" or "08.05".
#include <algorithm>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

// UTF-8 for the signs of year, month and day in Chinese and Japanese, then in Korean.
struct Signs {
  std::string_view year, month, day;
};
constexpr Signs kSigns[] = {{"\u5e74", "\u6708", "\u65e5"}, {"\ub144", "\uc6d4", "\uc77c"}};

std::string_view withoutEnd(std::string_view text, std::string_view end) noexcept {
  if (text.ends_with(end)) text.remove_suffix(end.size());
  return text;
}

// "9", "9." or "9" with the sign for a day.
bool readLocalDay(std::string_view text, CivilTime& date) noexcept {
  for (const Signs& signs : kSigns) text = withoutEnd(text, signs.day);
  text = withoutEnd(text, ".");
  return text.size() <= 2 && ascii::readNumber(text, date.day);
}

bool readYear(std::string_view text, CivilTime& date) noexcept {
  for (const Signs& signs : kSigns) text = withoutEnd(text, signs.year);
  return text.size() == 4 && ascii::readNumber(text, date.year);
}

// "3" and the sign for a month.
bool readMonthSign(std::string_view text, CivilTime& date) noexcept {
  for (const Signs& signs : kSigns) {
    const std::string_view number = withoutEnd(text, signs.month);
    if (number.size() < text.size() && number.size() <= 2) return ascii::readNumber(number, date.month);
  }
  return false;
}

bool readMonth(std::string_view text, CivilTime& date) noexcept {
  if (readMonthSign(text, date)) return true;
  date.month = monthOfLocalName(text);
  return date.month != 0;
}

// "10-27" or "27.10.", both in one field.
bool readNumbers(std::string_view text, CivilTime& date) noexcept {
  if (text.size() == 5 && text[2] == '-') {
    return ascii::readNumber(text.substr(0, 2), date.month) && ascii::readNumber(text.substr(3), date.day);
  }
  const std::size_t dot = text.find('.');
  return text.size() <= 6 && text.ends_with('.') && dot <= 2 && dot + 1 < text.size() &&
         ascii::readNumber(text.substr(0, dot), date.day) &&
         ascii::readNumber(text.substr(dot + 1, text.size() - dot - 2), date.month);
}

// "10" and "27" with the signs of month and day, in one field.
bool readSigns(std::string_view text, CivilTime& date) noexcept {
  for (const Signs& signs : kSigns) {
    const std::size_t sign = text.find(signs.month);
    if (sign == std::string_view::npos || !text.ends_with(signs.day)) continue;
    const std::size_t day = sign + signs.month.size();
    return readMonthSign(text.substr(0, day), date) && readLocalDay(text.substr(day), date);
  }
  return false;
}

// "9." and "3.": the month of a Finn.
bool readMonthNumber(std::string_view text, CivilTime& date) noexcept {
  return text.size() >= 2 && text.size() <= 3 && text.ends_with('.') &&
         ascii::readNumber(text.substr(0, text.size() - 1), date.month);
}

// "27." and a month, which a no-break space makes one field: the Czechs'.
bool readGluedDay(std::string_view text, CivilTime& date) noexcept {
  constexpr std::string_view kNoBreak = "\u00a0";
  const std::size_t end = text.find(kNoBreak);
  return end < text.size() && readLocalDay(text.substr(0, end), date) &&
         readMonth(text.substr(end + kNoBreak.size()), date);
}

// Day and month in either order. "de" before a month is the Catalans'.
bool readDayAndMonth(RowFields& fields, CivilTime& date) noexcept {
  const std::string_view first = fields.next();
  if (readNumbers(first, date) || readSigns(first, date) || readGluedDay(first, date)) return true;
  if (readMonth(first, date)) return readLocalDay(fields.next(), date);
  if (!readLocalDay(first, date)) return false;
  std::string_view month = fields.next();
  if (month == "de") month = fields.next();
  return readMonth(month, date) || (first.ends_with('.') && readMonthNumber(month, date));
}

// "08.05" is "08:05" in some countries.
bool readLocalClock(std::string_view text, CivilTime& date) noexcept {
  if (text.size() <= 5 && readClock(text, date)) return true;
  if (text.size() != 5 || text[2] != '.') return false;
  return ascii::readNumber(text.substr(0, 2), date.hour) && ascii::readNumber(text.substr(3), date.minute);
}

bool takeSeconds(std::optional<std::int64_t> seconds, RowTime& time) noexcept {
  time.seconds = seconds.value_or(0);
  return seconds.has_value();
}

// A date without a clock is as wide as one with it: where the blank that this takes does not stand before the
// year, it does behind it.
void skipPadding(RowFields& fields) noexcept {
  if (fields.rest().starts_with("  ")) fields = RowFields(fields.rest().substr(1));
}

// "2024-03-09 ", for it has the width of "10-27 08:05".
bool readIsoDay(RowFields& fields, CivilTime& date) noexcept {
  const std::string_view text = fields.next();
  if (text.size() != 10 || text[4] != '-' || !readYear(text.substr(0, 4), date)) return false;
  if (!readNumbers(text.substr(5), date)) return false;
  skipPadding(fields);
  return fields.rest().find(':') > 3;  // a clock that is none makes no name
}

// "2024 march 9".
bool readYearFirst(RowFields& fields, CivilTime& date) noexcept {
  return readYear(fields.next(), date) && readMonth(fields.next(), date) && readLocalDay(fields.next(), date);
}

bool readDayOfYear(RowFields& fields, CivilTime& date) noexcept {
  RowFields ahead = fields;
  if (!readIsoDay(ahead, date)) {
    ahead = fields;
    if (!readYearFirst(ahead, date)) return false;
  }
  fields = ahead;
  return true;
}

}  // namespace

bool readLocalDate(RowFields& fields, std::int64_t now, RowTime& time) noexcept {
  CivilTime date;
  time = RowTime();
  if (readDayOfYear(fields, date)) return takeSeconds(unixSeconds(date), time);
  if (!readDayAndMonth(fields, date)) return false;
  const bool padded = fields.rest().starts_with("  ");
  const std::string_view last = fields.next();
  time.hasClock = readLocalClock(last, date);
  if (time.hasClock) return takeSeconds(unixSecondsOfLatestYear(date, now), time);
  if (!readYear(last, date)) return false;
  if (!padded) skipPadding(fields);
  return takeSeconds(unixSeconds(date), time);
}

}  // namespace internet
