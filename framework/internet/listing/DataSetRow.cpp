// SPDX-License-Identifier: MIT
// Data sets as the FTP server of z/OS lists them:
//   Volume Unit    Referred Ext Used Recfm Lrecl BlkSz Dsorg Dsname
//   VOL001 3390   2024/01/12  1   15  FB      80 27920  PS  NAME.DATA
//   Migrated                                                NAME.OLD
// They have no size in bytes, and no time but the day of the last reference. A library (PO) can be entered.
#include <algorithm>
#include <array>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

bool isDataSetHeader(std::string_view line) noexcept {
  RowFields fields(line);
  return fields.next() == "Volume" && fields.next() == "Unit" && line.ends_with("Dsname");
}

// Qualifiers of capitals, digits and national characters; in quotes when it is not relative.
bool isDataSetName(std::string_view name) noexcept {
  constexpr std::string_view kMore = "@#$-.()+";
  if (name.size() > 2 && name.front() == '\'' && name.back() == '\'') name = name.substr(1, name.size() - 2);
  if (name.empty() || ascii::isDigit(name.front()) || name.front() == '-' || name.front() == '.')
    return false;
  return std::all_of(name.begin(), name.end(), [&](char c) {
    return (c >= 'A' && c <= 'Z') || ascii::isDigit(c) || kMore.find(c) != std::string_view::npos;
  });
}

// "2024/01/12", or "**NONE**" when it was never referred to.
bool readReferred(std::string_view text, RawRow& row) noexcept {
  if (text == "**NONE**") return true;
  CivilTime date;
  if (text.size() != 10 || text[4] != '/' || text[7] != '/' ||
      !ascii::readNumber(text.substr(0, 4), date.year) || !ascii::readNumber(text.substr(5, 2), date.month) ||
      !ascii::readNumber(text.substr(8), date.day)) {
    return false;
  }
  const std::optional<std::int64_t> seconds = unixSeconds(date);
  row.modified = seconds.value_or(0);
  return seconds.has_value();
}

bool isLibrary(std::string_view organization) noexcept { return organization.starts_with("PO"); }

// All ten columns.
bool readFullRow(RowFields fields, RawRow& row) noexcept {
  const std::string_view volume = fields.next();
  const std::string_view unit = fields.next();
  if (volume.size() > 6 || unit.size() > 8 || !readReferred(fields.next(), row)) return false;
  for (int column = 0; column < 2; ++column) fields.next();  // extents and tracks: "1", "15", "????"
  const std::string_view format = fields.next();
  std::uint64_t number = 0;
  if (format.empty() || format.size() > 5 || !ascii::readNumber(fields.next(), number) ||
      !ascii::readNumber(fields.next(), number)) {
    return false;
  }
  const std::string_view organization = fields.next();
  row.isDirectory = isLibrary(organization);
  row.name = fields.next();
  return organization.size() >= 2 && organization.size() <= 4 && isDataSetName(row.name) &&
         withoutPadding(fields.rest()).empty();
}

// What is not on a disk or has no columns says so in words; its name is the last of them.
bool readPoorRow(std::string_view line, RawRow& row) noexcept {
  const std::size_t end = line.find_last_not_of(' ');
  if (end == std::string_view::npos) return false;
  line = line.substr(0, end + 1);
  const std::size_t blank = line.rfind(' ');
  if (blank == std::string_view::npos) return false;
  row = RawRow();
  row.name = line.substr(blank + 1);
  row.isDirectory = line.starts_with("Pseudo Directory ");
  return isDataSetName(row.name);
}

bool readDataSetRow(std::string_view line, const RowContext& context, RawRow& row) noexcept {
  row = RawRow();
  if (readFullRow(RowFields(line), row)) return true;
  return context.known && readPoorRow(line, row);
}

}  // namespace

constexpr Dialect kDataSets{&isDataSetHeader, &readDataSetRow, nullptr};

}  // namespace internet
