// SPDX-License-Identifier: MIT
// Rows as DIRECTORY of OpenVMS writes them: "NAME.TXT;3  2/4  12-JAN-2024 10:05:33  [OWNER]  (RWED,RE,,)".
// Any of the columns may be missing. A name that is wider than its column has its row alone.
#include <algorithm>
#include <limits>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::uint64_t kBlock = 512;  // bytes
constexpr std::string_view kDirectoryType = ".DIR;1";

bool isVmsHeader(std::string_view line) noexcept {
  const std::string_view text = withoutPadding(line);
  return (text.starts_with("Directory ") && text.ends_with(']')) || text.starts_with("Total of ") ||
         text.starts_with("Grand total of ");
}

// "NAME.TXT;3" without the version.
bool readName(std::string_view field, RawRow& row) noexcept {
  const std::size_t version = field.rfind(';');
  int number = 0;
  if (version == 0 || version == std::string_view::npos) return false;
  if (!ascii::readNumber(field.substr(version + 1), number)) return false;
  row.isDirectory =
      field.size() > kDirectoryType.size() &&
      ascii::equalBlindToCase(field.substr(field.size() - kDirectoryType.size()), kDirectoryType);
  row.name = field.substr(0, row.isDirectory ? field.size() - kDirectoryType.size() : version);
  if (!row.isDirectory) row.exactName = field;
  return true;
}

// Blocks: "2", or those in use and those that are set aside, "2/4".
bool readBlocks(std::string_view field, RawRow& row) noexcept {
  const std::size_t slash = field.find('/');
  std::uint64_t allocated = 0;
  std::uint64_t used = 0;
  if (!ascii::readNumber(field.substr(0, slash), used)) return false;
  if (slash != std::string_view::npos && !ascii::readNumber(field.substr(slash + 1), allocated)) return false;
  if (used > std::numeric_limits<std::uint64_t>::max() / kBlock) return false;
  row.size = used * kBlock;
  return true;
}

// "12-JAN-2024".
bool readVmsDay(std::string_view field, CivilTime& date) noexcept {
  const std::size_t dash = field.find('-');
  if (dash == 0 || dash > 2 || field.size() != dash + 9 || field[dash + 4] != '-') return false;
  date.month = monthOfName(field.substr(dash + 1, 3));
  return date.month != 0 && ascii::readNumber(field.substr(0, dash), date.day) &&
         ascii::readNumber(field.substr(dash + 5), date.year);
}

// "10:05", "10:05:33" or "10:05:33.21".
bool readDateAndClock(RowFields& fields, RowTime& time) noexcept {
  CivilTime date;
  if (!readVmsDay(fields.next(), date)) return false;
  RowFields behind = fields;
  const std::string_view clock = behind.next();
  time.hasClock = readClock(clock.substr(0, clock.find('.')), date);
  if (time.hasClock) fields = behind;
  const std::optional<std::int64_t> seconds = unixSeconds(date);
  time.seconds = seconds.value_or(0);
  return seconds.has_value();
}

// "[OWNER,NAME]" and "(RWED,RWED,RE,)"; the owner may hold blanks.
bool endsInOwnerAndProtection(RowFields fields) noexcept {
  const std::string_view rest = withoutPadding(fields.rest());
  return rest.empty() ||
         ((rest.front() == '[' || rest.front() == '(') && (rest.back() == ']' || rest.back() == ')'));
}

// The columns behind the name. Of itself a row needs both to be one.
bool readColumns(RowFields fields, bool known, RawRow& row) noexcept {
  RowFields behind = fields;
  const bool sized = readBlocks(behind.next(), row);
  if (sized) fields = behind;
  RowTime time;
  behind = fields;
  const bool dated = readDateAndClock(behind, time);
  if (dated) {
    fields = behind;
    row.take(time);
  }
  return (known ? sized || dated : sized && dated) && endsInOwnerAndProtection(fields);
}

bool readVmsRow(std::string_view line, const RowContext& context, RawRow& row) noexcept {
  if (line.starts_with(' ')) return false;
  row = RawRow();
  RowFields fields(line);
  if (!readName(fields.next(), row)) return false;
  row.nameIsAlone = context.known && withoutPadding(fields.rest()).empty();
  return row.nameIsAlone || readColumns(fields, context.known, row);
}

bool readRest(std::string_view line, RawRow& row) noexcept {
  row = RawRow();
  return line.starts_with(' ') && readColumns(RowFields(line), true, row);
}

}  // namespace

constexpr Dialect kVms{&isVmsHeader, &readVmsRow, &readRest};

}  // namespace internet
