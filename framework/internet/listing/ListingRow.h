// SPDX-License-Identifier: MIT
// The readers of single rows, and what they share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "framework/internet/listing/FtpListing.h"

namespace internet {

enum class RowKind {
  entry,
  itself,   // the listed directory or its parent
  header,   // tells how other rows are to be read
  rest,     // of the entry before it, which had its name alone in its row
  unparsed  // not this form, or a name that no entry may have
};

// Walks over the blank-separated fields of a row. A copy remembers a place.
class RowFields {
 public:
  explicit RowFields(std::string_view row) noexcept : rest_(row) {}

  // The next field; empty at the row's end. A loop of its own: fields are too short for a search to pay.
  std::string_view next() noexcept {
    std::size_t start = 0;
    while (start < rest_.size() && rest_[start] == ' ') ++start;
    std::size_t end = start;
    while (end < rest_.size() && rest_[end] != ' ') ++end;
    const std::string_view field = rest_.substr(start, end - start);
    rest_.remove_prefix(end);
    return field;
  }
  // Everything behind the last field.
  [[nodiscard]] std::string_view rest() const noexcept { return rest_; }
  // The name: everything behind exactly one blank. Empty when there is none.
  [[nodiscard]] std::string_view restAfterBlank() const noexcept;

 private:
  std::string_view rest_;
};

// What stands behind the blanks that pad a column.
[[nodiscard]] std::string_view withoutPadding(std::string_view text) noexcept;

// Decimal digits, also in groups of three ("1,234,567").
bool readSize(std::string_view text, std::uint64_t& size) noexcept;

struct RowTime {
  std::int64_t seconds = 0;  // as if it were UTC, where the zone is not told
  bool hasClock = false;     // else a day
  bool hasZone = false;
};

// A row before its name is judged. A link has no size of its own.
struct RawRow {
  bool isDirectory = false;
  bool isLink = false;
  bool readOnly = false;
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  bool inServersZone = false;  // as in FtpEntry
  std::string_view name;
  std::string_view exactName;  // with the version, where there may be others of that name; "" = no versions
  bool nameIsAlone = false;    // size and time may come in the next row

  void take(const RowTime& time) noexcept {
    modified = time.seconds;
    inServersZone = time.hasClock && !time.hasZone;
  }
};

enum class MlsxType { unknown, file, directory, itself, link, other };

struct MlsxRow {
  MlsxType type = MlsxType::unknown;
  // A link for sure, or a file with the rights that every link has: some servers say "file" of a link, but
  // give its own size.
  bool mayBeLink = false;
  RawRow raw;  // its name as the server sent it: a path in the answer to MLST
};

// The facts and the name. Leading blanks before the facts are skipped.
bool readMlsxRow(std::string_view line, MlsxRow& row) noexcept;

// Makes the entry of a row if its name is one that an entry may have; `directory` as in ListingRules.
RowKind makeEntry(const RawRow& row, std::string_view directory, FtpEntry& entry);

RowKind readMlsxEntry(std::string_view line, std::string_view directory, FtpEntry& entry);

}  // namespace internet
