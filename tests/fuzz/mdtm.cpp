// SPDX-License-Identifier: MIT
// Time replies: what is read, written again, gives the same digits.
#include <chrono>
#include <cstdio>

#include "tests/fuzz/Invariants.h"

namespace {

std::string_view written(std::int64_t seconds, char (&buffer)[32]) {
  using namespace std::chrono;
  const sys_seconds time{std::chrono::seconds(seconds)};
  const sys_days day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  std::snprintf(buffer, sizeof buffer, "%04d%02u%02u%02d%02d%02d", int{date.year()}, unsigned{date.month()},
                unsigned{date.day()}, static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
  return buffer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  const std::int64_t seconds = internet::parseMdtmTime(text);
  if (seconds == 0) return 0;
  const std::string_view digits = text.substr(0, 14);
  fuzz::require(digits.size() == 14 && (text.size() == 14 || text[14] == '.'));
  char buffer[32];
  // A leap second is the first one of the next minute.
  if (digits.ends_with("60")) {
    fuzz::require(written(seconds, buffer).ends_with("00"));
  } else {
    fuzz::require(written(seconds, buffer) == digits);
  }
  return 0;
}
