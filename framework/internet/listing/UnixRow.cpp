// SPDX-License-Identifier: MIT
// Rows as `ls -l` writes them. Where the size stands depends on the fields before it (owner and group may be
// missing or hold blanks), so the date is looked for and the size is the field before it.
#include <algorithm>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListingRow.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::size_t kModeLength = 10;
// Link count, owner, group with blanks, both device numbers.
constexpr int kMaxFieldsBeforeDate = 12;

bool isMode(std::string_view text) noexcept {
  constexpr std::string_view kTypes = "-dlbcpsDCMnPw?";
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

// "10:05", "2024" or "10:05:59 2024" behind day and month.
std::optional<std::int64_t> readClockOrYear(RowFields& fields, CivilTime& time, std::int64_t now) noexcept {
  const std::string_view text = fields.next();
  if (readClock(text, time)) {
    const bool withSeconds = text.size() > 5;
    if (!withSeconds) return unixSecondsOfLatestYear(time, now);
    return ascii::readNumber(fields.next(), time.year) ? unixSeconds(time) : std::nullopt;
  }
  return text.size() == 4 && ascii::readNumber(text, time.year) ? unixSeconds(time) : std::nullopt;
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
std::optional<std::int64_t> readIsoClock(RowFields& fields, CivilTime& time) noexcept {
  const std::string_view text = fields.next();
  const std::size_t point = text.find('.');
  if (!readClock(text.substr(0, point), time)) return std::nullopt;
  const std::optional<std::int64_t> seconds = unixSeconds(time);
  if (point == std::string_view::npos || !seconds) return seconds;
  const std::optional<std::int64_t> zone = readZone(fields.next());
  return zone ? std::optional(*seconds - *zone) : std::nullopt;
}

bool readIsoDate(std::string_view text, CivilTime& time) noexcept {
  return text.size() == 10 && text[4] == '-' && text[7] == '-' &&
         ascii::readNumber(text.substr(0, 4), time.year) &&
         ascii::readNumber(text.substr(5, 2), time.month) && ascii::readNumber(text.substr(8), time.day);
}

std::optional<std::int64_t> readDate(RowFields& fields, std::int64_t now) noexcept {
  CivilTime time;
  const std::string_view first = fields.next();
  if (readIsoDate(first, time)) return readIsoClock(fields, time);
  const bool dayFirst = readDay(first, time);
  if (!dayFirst) time.month = monthOfName(first);
  if (!dayFirst && time.month == 0) return std::nullopt;
  const std::string_view second = fields.next();
  if (dayFirst) time.month = monthOfName(second);
  if (time.month == 0 || (!dayFirst && !readDay(second, time))) return std::nullopt;
  return readClockOrYear(fields, time, now);
}

// A device has its two numbers in place of a size.
bool readSizeOf(char type, std::string_view field, RawRow& row) noexcept {
  return type == 'b' || type == 'c' || readSize(field, row.size);
}

}  // namespace

bool readUnixRow(std::string_view line, std::int64_t now, RawRow& row) noexcept {
  if (!isMode(line.substr(0, kModeLength))) return false;
  RowFields fields(line.substr(kModeLength));
  if (fields.rest().find(' ') != 0 && !isModeTail(fields.next())) return false;
  for (int i = 0; i < kMaxFieldsBeforeDate; ++i) {
    const std::string_view field = fields.next();
    if (field.empty()) return false;
    RowFields behind = fields;
    const std::optional<std::int64_t> modified = readDate(behind, now);
    if (!modified) continue;
    if (!readSizeOf(line[0], field, row)) return false;
    row.modified = *modified;
    row.isDirectory = line[0] == 'd';
    row.isLink = line[0] == 'l';
    row.readOnly = line[2] != 'w';
    row.name = behind.restAfterBlank();
    if (row.isLink) row.name = row.name.substr(0, row.name.find(" -> "));
    return true;
  }
  return false;
}

}  // namespace internet
