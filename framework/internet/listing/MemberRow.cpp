// SPDX-License-Identifier: MIT
// Members of a library as the FTP server of z/OS lists them, with ISPF's statistics where there are any,
// whose sizes are records:
//    Name     VV.MM   Created       Changed      Size  Init   Mod   Id
//   MEMBER    01.02 2024/01/10 2024/01/12 10:05    12    10     0 OWNER
// and of a load library, with sizes in bytes:
//    Name      Size     TTR   Alias-of AC --------- Attributes --------- Amode Rmode
//   MODULE    000A70   000208             00 FO             RN RU            31    ANY
#include <algorithm>
#include <charconv>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

bool isMemberName(std::string_view name) noexcept {
  constexpr std::string_view kNational = "@#$";
  return !name.empty() && name.size() <= 8 && !ascii::isDigit(name.front()) &&
         std::all_of(name.begin(), name.end(), [&](char c) {
           return (c >= 'A' && c <= 'Z') || ascii::isDigit(c) || kNational.find(c) != std::string_view::npos;
         });
}

bool isMemberHeader(std::string_view line) noexcept {
  RowFields fields(line);
  return fields.next() == "Name" && fields.next() == "VV.MM";
}

bool isModuleHeader(std::string_view line) noexcept {
  RowFields fields(line);
  return fields.next() == "Name" && fields.next() == "Size" && fields.next() == "TTR";
}

bool isNameAlone(RowFields fields) noexcept { return withoutPadding(fields.rest()).empty(); }

// "2024/01/12" or "24/01/12".
bool readSlashedDay(std::string_view text, CivilTime& date) noexcept {
  const std::size_t year = text.size() == 10 ? 4 : 2;
  if (text.size() != year + 6 || text[year] != '/' || text[year + 3] != '/') return false;
  if (!ascii::readNumber(text.substr(0, year), date.year)) return false;
  if (year == 2) date.year += date.year < 70 ? 2000 : 1900;
  return ascii::readNumber(text.substr(year + 1, 2), date.month) &&
         ascii::readNumber(text.substr(year + 4), date.day);
}

bool isVersion(std::string_view text) noexcept {
  return text.size() == 5 && text[2] == '.' && ascii::isDigit(text[0]) && ascii::isDigit(text[1]) &&
         ascii::isDigit(text[3]) && ascii::isDigit(text[4]);
}

bool readStatistics(RowFields fields, RawRow& row) noexcept {
  CivilTime created;
  CivilTime changed;
  if (!isVersion(fields.next()) || !readSlashedDay(fields.next(), created) ||
      !readSlashedDay(fields.next(), changed) || !readClock(fields.next(), changed)) {
    return false;
  }
  std::uint32_t number = 0;
  for (int column = 0; column < 3; ++column) {  // its records: now, at first, modified
    if (!ascii::readNumber(fields.next(), number)) return false;
  }
  const std::optional<std::int64_t> seconds = unixSeconds(changed);
  row.take({.seconds = seconds.value_or(0), .hasClock = true});
  return seconds.has_value();
}

bool readMember(std::string_view line, const RowContext& context, RawRow& row) noexcept {
  row = RawRow();
  RowFields fields(line);
  row.name = fields.next();
  if (!isMemberName(row.name)) return false;
  return readStatistics(fields, row) || (context.known && isNameAlone(fields));
}

bool readHexadecimal(std::string_view text, std::uint64_t& number) noexcept {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
  return text.size() >= 6 && text.size() <= 8 && error == std::errc{} && stop == end;
}

bool readModule(std::string_view line, const RowContext& context, RawRow& row) noexcept {
  if (!context.known) return false;
  row = RawRow();
  RowFields fields(line);
  row.name = fields.next();
  std::uint64_t place = 0;
  if (!isMemberName(row.name)) return false;
  return isNameAlone(fields) ||
         (readHexadecimal(fields.next(), row.size) && readHexadecimal(fields.next(), place));
}

}  // namespace

constexpr Dialect kMembers{&isMemberHeader, &readMember, nullptr};
constexpr Dialect kLoadModules{&isModuleHeader, &readModule, nullptr};

}  // namespace internet
