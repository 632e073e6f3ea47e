// SPDX-License-Identifier: MIT
// Easily Parsed LIST Format (D. J. Bernstein): "+fact,fact,<TAB>name".
#include <algorithm>

#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::int64_t kLastSecond = 253'402'300'799;  // of the year 9999

// "up644": the owner's digit of a mode.
bool isReadOnly(std::string_view mode) noexcept {
  constexpr int kWrite = 2;
  return mode.size() == 3 && mode[0] >= '0' && mode[0] <= '7' && ((mode[0] - '0') & kWrite) == 0;
}

void takeFact(std::string_view fact, RawRow& row) noexcept {
  if (fact == "/") row.isDirectory = true;
  if (fact.starts_with('s')) ascii::readNumber(fact.substr(1), row.size);
  if (fact.starts_with('m') && ascii::readNumber(fact.substr(1), row.modified)) {
    if (row.modified > kLastSecond) row.modified = 0;
  }
  if (fact.starts_with("up")) row.readOnly = isReadOnly(fact.substr(2));
}

bool readEplfRow(std::string_view line, const RowContext&, RawRow& row) noexcept {
  const std::size_t tab = line.find('\t');
  if (!line.starts_with('+') || tab == std::string_view::npos) return false;
  row = RawRow();
  for (std::string_view facts = line.substr(1, tab - 1); !facts.empty();) {
    const std::string_view fact = facts.substr(0, facts.find(','));
    facts.remove_prefix(std::min(fact.size() + 1, facts.size()));
    takeFact(fact, row);
  }
  row.name = line.substr(tab + 1);
  return true;
}

}  // namespace

constexpr Dialect kEplf{&noHeader, &readEplfRow, nullptr};

}  // namespace internet
