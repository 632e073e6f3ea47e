// SPDX-License-Identifier: MIT
// Rows as `ls -l` writes them. Where the size stands depends on the fields before it (owner and group may be
// missing or hold blanks), so the date is looked for and the size is the field before it.
#include <algorithm>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::size_t kModeLength = 10;
// Link count, owner, group with blanks, both device numbers.
constexpr int kMaxFieldsBeforeDate = 12;

bool isMode(std::string_view text) noexcept {
  constexpr std::string_view kTypes = "-dlebcpsDCMnPw?";
  constexpr std::string_view kRights = "-rwxsStTlL?";
  return text.size() == kModeLength && kTypes.find(text[0]) != std::string_view::npos &&
         text.find_first_not_of(kRights, 1) == std::string_view::npos;
}

// What may follow the mode without a blank: a mark of further rights, a link count of many digits.
bool isModeTail(std::string_view text) noexcept {
  if (!text.empty() && (text[0] == '+' || text[0] == '.' || text[0] == '@')) text.remove_prefix(1);
  return std::all_of(text.begin(), text.end(), ascii::isDigit);
}

bool readDay(std::string_view text, CivilTime& time) noexcept {
  return text.size() <= 2 && ascii::readNumber(text, time.day);
}

// A clock behind the year, where the listing shows both.
bool readClockOfYear(RowFields& fields, CivilTime& time, const RowContext& context) noexcept {
  return !context.clockBehindYear || readClock(fields.next(), time);
}

// "10:05", "2024" or "10:05:59 2024" behind day and month.
bool readClockOrYear(RowFields& fields, CivilTime& date, const RowContext& context, RowTime& time) noexcept {
  const std::string_view text = fields.next();
  std::optional<std::int64_t> seconds;
  time.hasClock = readClock(text, date);
  if (time.hasClock && text.size() <= 5) {
    seconds = unixSecondsOfLatestYear(date, context.now);
  } else if (time.hasClock) {
    if (ascii::readNumber(fields.next(), date.year)) seconds = unixSeconds(date);
  } else if (text.size() == 4 && ascii::readNumber(text, date.year) &&
             readClockOfYear(fields, date, context)) {
    time.hasClock = context.clockBehindYear;
    seconds = unixSeconds(date);
  }
  time.seconds = seconds.value_or(0);
  return seconds.has_value();
}

// "+0130" in seconds.
std::optional<std::int64_t> readZone(std::string_view text) noexcept {
  int hours = 0;
  int minutes = 0;
  if (text.size() != 5 || (text[0] != '+' && text[0] != '-') ||
      !ascii::readNumber(text.substr(1, 2), hours) || !ascii::readNumber(text.substr(3), minutes)) {
    return std::nullopt;
  }
  const int seconds = hours * 3600 + minutes * 60;
  return text[0] == '-' ? -seconds : seconds;
}

// "10:05" or "10:05:33", and "10:05:33.000000000 +0100" as `ls --full-time` writes it.
bool readIsoClock(RowFields& fields, CivilTime& date, RowTime& time) noexcept {
  const std::string_view text = fields.next();
  const std::size_t point = text.find('.');
  if (!readClock(text.substr(0, point), date)) return false;
  const std::optional<std::int64_t> seconds = unixSeconds(date);
  time.hasClock = true;
  time.hasZone = point != std::string_view::npos && seconds;
  const std::optional<std::int64_t> zone = time.hasZone ? readZone(fields.next()) : 0;
  if (!seconds || !zone) return false;
  time.seconds = *seconds - *zone;
  return true;
}

bool readIsoDate(std::string_view text, CivilTime& time) noexcept {
  return text.size() == 10 && text[4] == '-' && text[7] == '-' &&
         ascii::readNumber(text.substr(0, 4), time.year) &&
         ascii::readNumber(text.substr(5, 2), time.month) && ascii::readNumber(text.substr(8), time.day);
}

bool readDate(RowFields& fields, const RowContext& context, RowTime& time) noexcept {
  CivilTime date;
  time = RowTime();
  const std::string_view first = fields.next();
  if (readIsoDate(first, date)) return readIsoClock(fields, date, time);
  const bool dayFirst = readDay(first, date);
  if (!dayFirst) date.month = monthOfName(first);
  if (!dayFirst && date.month == 0) return false;
  const std::string_view second = fields.next();
  if (dayFirst) date.month = monthOfName(second);
  if (date.month == 0 || (!dayFirst && !readDay(second, date))) return false;
  return readClockOrYear(fields, date, context, time);
}

bool readDateOf(RowFields& fields, const RowContext& context, bool local, RowTime& time) noexcept {
  return local ? readLocalDate(fields, context.now, time) : readDate(fields, context, time);
}

// The size is the field before the first date.
enum class Search { found, noDate, noSize };

Search searchDate(RowFields& fields, const RowContext& context, bool device, bool local,
                  RawRow& row) noexcept {
  RowFields ahead = fields;
  for (int i = 0; i < kMaxFieldsBeforeDate; ++i) {
    const std::string_view field = ahead.next();
    if (field.empty()) return Search::noDate;
    RowFields behind = ahead;
    RowTime time;
    if (!readDateOf(behind, context, local, time)) continue;
    // A device has its two numbers in place of a size.
    if (!device && !readSize(field, row.size)) return Search::noSize;
    row.take(time);
    fields = behind;
    return Search::found;
  }
  return Search::noDate;
}

}  // namespace

// In English first: what looks like a date there is one.
bool readSizeAndDate(RowFields& fields, const RowContext& context, bool device, RawRow& row) noexcept {
  const Search english = searchDate(fields, context, device, false, row);
  if (english != Search::noDate) return english == Search::found;
  return searchDate(fields, context, device, true, row) == Search::found;
}

bool readUnixRow(std::string_view line, const RowContext& context, RawRow& row) noexcept {
  if (!isMode(line.substr(0, kModeLength))) return false;
  row = RawRow();
  RowFields fields(line.substr(kModeLength));
  if (fields.rest().find(' ') != 0 && !isModeTail(fields.next())) return false;
  if (!readSizeAndDate(fields, context, line[0] == 'b' || line[0] == 'c', row)) return false;
  row.isDirectory = line[0] == 'd';
  row.isLink = line[0] == 'l' || line[0] == 'e';
  row.readOnly = line[2] != 'w';
  row.name = fields.restAfterBlank();
  if (row.isLink) row.name = row.name.substr(0, row.name.find(" -> "));
  return true;
}

}  // namespace internet
