// SPDX-License-Identifier: MIT
// Rows as the `dir` of DOS and its followers writes them.
#include <algorithm>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::string_view kDirectoryMark = "<DIR>";
// From the start of the mark to the name.
constexpr std::size_t kMarkColumn = 15;

int fullDosYear(int year) noexcept { return year < 70 ? year + 2000 : year + 1900; }

// "01-12-24", "01-12-2024", "2024-01-12", also with slashes.
bool readDosDate(std::string_view text, CivilTime& time) noexcept {
  const bool yearFirst = text.size() == 10 && (text[4] == '-' || text[4] == '/');
  if (text.size() != 8 && text.size() != 10) return false;
  const std::size_t month = yearFirst ? 5 : 0;
  const char separator = text[month + 2];
  if ((separator != '-' && separator != '/') || text[yearFirst ? 4 : 5] != separator) return false;
  const std::string_view year = yearFirst ? text.substr(0, 4) : text.substr(6);
  if (!ascii::readNumber(year, time.year) || !ascii::readNumber(text.substr(month, 2), time.month) ||
      !ascii::readNumber(text.substr(month + 3, 2), time.day)) {
    return false;
  }
  if (year.size() == 2) time.year = fullDosYear(time.year);
  return true;
}

// "AM" or "PM" turns the hour, which goes from 1 to 12, into one of 24.
bool applyHalfOfDay(std::string_view half, CivilTime& time) noexcept {
  const bool afternoon = ascii::equalBlindToCase(half, "PM");
  if ((!afternoon && !ascii::equalBlindToCase(half, "AM")) || time.hour < 1 || time.hour > 12) return false;
  time.hour = time.hour % 12 + (afternoon ? 12 : 0);
  return true;
}

// "10:05AM", "10:05 AM" or "22:05", each also with seconds.
bool readDosClock(RowFields& fields, CivilTime& time) noexcept {
  std::string_view clock = fields.next();
  const std::size_t letter = clock.find_first_not_of("0123456789:");
  const std::string_view half = clock.substr(std::min(letter, clock.size()));
  clock.remove_suffix(half.size());
  if (!readClock(clock, time)) return false;
  if (!half.empty()) return applyHalfOfDay(half, time);
  RowFields ahead = fields;
  if (applyHalfOfDay(ahead.next(), time)) fields = ahead;
  return true;
}

// The name stands in its column, so it may begin with blanks; nearer to the mark, it begins at its first
// letter.
std::string_view nameBehindMark(std::string_view mark, std::string_view rest) noexcept {
  const std::size_t gap = mark.size() < kMarkColumn ? kMarkColumn - mark.size() : 1;
  const std::size_t blanks = rest.find_first_not_of(' ');
  if (blanks == 0 || blanks == std::string_view::npos) return {};
  return rest.substr(std::min(blanks, gap));
}

}  // namespace

bool readDosRow(std::string_view line, RawRow& row) noexcept {
  RowFields fields(line);
  CivilTime time;
  if (line.starts_with(' ') || !readDosDate(fields.next(), time) || !readDosClock(fields, time)) return false;
  const std::optional<std::int64_t> modified = unixSeconds(time);
  if (!modified) return false;
  row = RawRow();
  row.take({.seconds = *modified, .hasClock = true});
  const std::string_view field = fields.next();
  if (field.size() > 2 && field.front() == '<' && field.back() == '>') {
    row.isDirectory = ascii::equalBlindToCase(field, kDirectoryMark);
    row.isLink = !row.isDirectory;  // <JUNCTION>, <SYMLINK>, <SYMLINKD>
    row.name = nameBehindMark(field, fields.rest());
  } else {
    if (!readSize(field, row.size)) return false;
    row.name = fields.restAfterBlank();
  }
  return true;
}

}  // namespace internet
