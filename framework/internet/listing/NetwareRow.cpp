// SPDX-License-Identifier: MIT
// Rows of Netware: like those of Unix, with its own rights in place of the mode, "- [RWCEAFMS] owner  1234
// Jan 12 10:05 name".
#include "framework/internet/listing/ListDialects.h"

namespace internet {
namespace {

// "d [RWCEAFMS] ".
constexpr std::size_t kRightsLength = 13;

bool readNetwareRow(std::string_view line, const RowContext& context, RawRow& row) noexcept {
  const std::string_view rights = line.substr(0, kRightsLength);
  if (rights.size() != kRightsLength || (rights[0] != 'd' && rights[0] != '-') ||
      rights.substr(1, 2) != " [" || rights.substr(11) != "] " ||
      rights.substr(3, 8).find_first_not_of("-SRWCEMFA") != std::string_view::npos) {
    return false;
  }
  row = RawRow();
  RowFields fields(line.substr(kRightsLength - 1));
  if (!readSizeAndDate(fields, {.now = context.now}, false, row)) return false;
  row.isDirectory = rights[0] == 'd';
  row.readOnly = rights.find('W') == std::string_view::npos;
  row.name = withoutPadding(fields.rest());
  return true;
}

}  // namespace

constexpr Dialect kNetware{&noHeader, &readNetwareRow, nullptr};

}  // namespace internet
