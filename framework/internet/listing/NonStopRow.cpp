// SPDX-License-Identifier: MIT
// Guardian files as the FTP server of HP NonStop lists them:
//   File         Code             EOF  Last Modification    Owner  RWEP
//   NAME       101            1234  12-Jan-24 10:05:33 255,255 "NUNU"
// The code has a letter behind it when the file is open, licensed or the like.
#include <algorithm>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

bool isNonStopHeader(std::string_view line) noexcept {
  RowFields fields(line);
  return fields.next() == "File" && fields.next() == "Code" && fields.next() == "EOF";
}

bool isFileName(std::string_view name) noexcept {
  const auto isLetter = [](char c) { return ascii::lowerCase(c) >= 'a' && ascii::lowerCase(c) <= 'z'; };
  return !name.empty() && name.size() <= 8 && isLetter(name.front()) &&
         std::all_of(name.begin(), name.end(), [&](char c) { return isLetter(c) || ascii::isDigit(c); });
}

bool isCode(std::string_view field) noexcept {
  constexpr std::string_view kMarks = "OLPCDBRT+?*";
  if (field.size() > 1 && kMarks.find(field.back()) != std::string_view::npos) field.remove_suffix(1);
  std::uint32_t code = 0;
  return ascii::readNumber(field, code);
}

// "12-Jan-24" or "12-Jan-2024".
bool readGuardianDay(std::string_view field, CivilTime& date) noexcept {
  const std::size_t dash = field.find('-');
  if (dash == 0 || dash > 2 || field.size() < dash + 7 || field[dash + 4] != '-') return false;
  const std::string_view year = field.substr(dash + 5);
  if ((year.size() != 2 && year.size() != 4) || !ascii::readNumber(year, date.year)) return false;
  if (year.size() == 2) date.year += date.year < 70 ? 2000 : 1900;
  date.month = monthOfName(field.substr(dash + 1, 3));
  return date.month != 0 && ascii::readNumber(field.substr(0, dash), date.day);
}

// Group and user, "255,255" or "2, 17", and the rights in quotes, or the mark of Safeguard's.
bool isOwnerAndRights(std::string_view text) noexcept {
  const std::size_t rights = text.find_first_of("\"*-");
  if (rights == std::string_view::npos) return false;
  const std::string_view owner = text.substr(0, rights);
  return owner.find(',') != std::string_view::npos &&
         owner.find_first_not_of("0123456789, ") == std::string_view::npos;
}

bool readNonStopRow(std::string_view line, const RowContext&, RawRow& row) noexcept {
  row = RawRow();
  RowFields fields(line);
  CivilTime date;
  row.name = fields.next();
  if (!isFileName(row.name) || !isCode(fields.next()) || !ascii::readNumber(fields.next(), row.size) ||
      !readGuardianDay(fields.next(), date) || !readClock(fields.next(), date) ||
      !isOwnerAndRights(fields.rest())) {
    return false;
  }
  const std::optional<std::int64_t> seconds = unixSeconds(date);
  row.take({.seconds = seconds.value_or(0), .hasClock = true});
  return seconds.has_value();
}

}  // namespace

constexpr Dialect kNonStop{&isNonStopHeader, &readNonStopRow, nullptr};

}  // namespace internet
