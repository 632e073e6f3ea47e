// SPDX-License-Identifier: MIT
// The rows of one listing of LIST in their order, where one may tell how the others are to be read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "framework/internet/listing/ListDialects.h"

namespace internet {

// What a row of the kind `rest` tells of the entry before it.
void takeRest(const EntryFacts& rest, EntryFacts& entry) noexcept;

class ListReader {
 public:
  // `now` as for parseListLine(), `directory` as in ListingRules.
  ListReader(std::int64_t now, std::string_view directory) noexcept
      : directory_(directory), context_{.now = now} {}

  // `entry` is written where the row is one; for takeRest(), where it is the rest of one.
  RowKind read(std::string_view line, FtpEntry& entry);

  // All rows of Unix that were read show a year, and what looks like a clock begins their names.
  [[nodiscard]] bool mayHaveClocksInNames() const noexcept { return yearsAndClocks_ == unixRows_; }
  // So many are none.
  [[nodiscard]] bool clocksAreInNames() const noexcept {
    return yearsAndClocks_ >= 2 && mayHaveClocksInNames();
  }
  // No row of Unix was read, and this one is such a row.
  [[nodiscard]] bool mayBeginClocksInNames(std::string_view line) const noexcept;
  // Reads such rows with the clock as a part of the date.
  void takeClocksBehindYears() noexcept { context_.clockBehindYear = true; }

 private:
  bool readUnixOrDos(std::string_view line, RawRow& row) noexcept;
  bool readOther(std::string_view line, RawRow& row) noexcept;
  bool isHeader(std::string_view line) noexcept;
  RowKind finish(RawRow row, FtpEntry& entry);

  std::string_view directory_;
  RowContext context_;
  const Dialect* dialect_ = nullptr;  // that the rows before have shown; none of Unix and DOS
  bool nameWasAlone_ = false;         // in the row before
  std::string versioned_;             // the name of the last row whose dialect has versions
  std::size_t unixRows_ = 0;
  std::size_t yearsAndClocks_ = 0;
};

}  // namespace internet
