// SPDX-License-Identifier: MIT
// Rows as IBM i (OS/400) writes them in its own list format: "OWNER   1234 01/12/24 10:05:33 *STMF   name". A
// member has neither size nor time. What can be listed has a slash behind its name, or a type that says so.
#include <algorithm>
#include <array>
#include <optional>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

// Two digits stand for 1940 to 2039.
int fullOs400Year(int year) noexcept { return year < 40 ? year + 2000 : year + 1900; }

struct DateOrder {
  char separator;
  int day, month, year;  // which of the three numbers it is
};

// The job's date format: the order that its separator is usual for, and the others where that gives no date.
constexpr std::array kOrders{DateOrder{'/', 1, 0, 2}, DateOrder{'/', 0, 1, 2}, DateOrder{'/', 2, 1, 0},
                             DateOrder{'-', 2, 1, 0}, DateOrder{'-', 1, 0, 2}, DateOrder{'-', 0, 1, 2},
                             DateOrder{'.', 0, 1, 2}, DateOrder{'.', 2, 1, 0}, DateOrder{'.', 1, 0, 2}};

// Three numbers of two digits, of which the first or the last may have four.
bool readNumbers(std::string_view text, char separator, std::array<std::string_view, 3>& numbers) noexcept {
  const std::size_t first = text.find(separator);
  const std::size_t second = text.rfind(separator);
  if (first == std::string_view::npos || first == second) return false;
  numbers = {text.substr(0, first), text.substr(first + 1, second - first - 1), text.substr(second + 1)};
  return numbers[1].size() == 2 && numbers[0].size() + numbers[2].size() <= 6;
}

bool readDate(std::string_view text, CivilTime& date) noexcept {
  for (const DateOrder& order : kOrders) {
    std::array<std::string_view, 3> numbers;
    if (!readNumbers(text, order.separator, numbers)) continue;
    const auto read = [&numbers](int which, int& number) {
      return ascii::readNumber(numbers[static_cast<std::size_t>(which)], number);
    };
    const std::size_t yearDigits = numbers[static_cast<std::size_t>(order.year)].size();
    if (!read(order.day, date.day) || !read(order.month, date.month) || !read(order.year, date.year))
      return false;
    if (yearDigits == 2) date.year = fullOs400Year(date.year);
    if ((yearDigits == 2 || yearDigits == 4) && unixSeconds(date)) return true;
  }
  return false;
}

bool readTime(RowFields& fields, RowTime& time) noexcept {
  CivilTime date;
  if (!readDate(fields.next(), date) || !readClock(fields.next(), date)) return false;
  const std::optional<std::int64_t> seconds = unixSeconds(date);
  time = {.seconds = seconds.value_or(0), .hasClock = true};
  return seconds.has_value();
}

bool isType(std::string_view field) noexcept {
  return field.size() >= 3 && field.size() <= 8 && field[0] == '*' &&
         std::all_of(field.begin() + 1, field.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

bool isFolderType(std::string_view type) noexcept {
  return type == "*DIR" || type == "*DDIR" || type == "*LIB" || type == "*FLR";
}

// The owner, and size and time unless it is a member.
bool readOs400Row(std::string_view line, const RowContext&, RawRow& row) noexcept {
  row = RawRow();
  RowFields fields(line);
  std::string_view field = fields.next();
  if (!isType(field)) field = fields.next();
  if (RowTime time; ascii::readNumber(field, row.size)) {
    if (!readTime(fields, time)) return false;
    row.take(time);
    field = fields.next();
  } else if (field != "*MEM") {
    return false;
  }
  if (!isType(field)) return false;
  row.name = withoutPadding(fields.rest());
  row.isDirectory = isFolderType(field) || row.name.ends_with('/');
  return true;
}

}  // namespace

constexpr Dialect kOs400{&noHeader, &readOs400Row, nullptr};

}  // namespace internet
