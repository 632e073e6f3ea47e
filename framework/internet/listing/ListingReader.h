// SPDX-License-Identifier: MIT
// Reads a listing while it comes, in pieces that may end anywhere; no I/O. What is kept of it is its entries
// and the row that is not there whole yet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "framework/internet/listing/EntryList.h"
#include "framework/internet/listing/ListReader.h"

namespace internet {

inline constexpr std::size_t kMaxListingEntries = 4'000'000;

struct FtpListing {
  EntryList entries;     // those that are wanted, in the server's order
  std::size_t rows = 0;  // that are entries, wanted or not
  std::size_t unparsedLines =
      0;                   // rows that are no entry, no known header ("total 88", blank) and no error text
  bool cutInLine = false;  // the last row had no line end
  bool lastLineUnparsed = false;  // the last row is one of unparsedLines
  bool overLimit = false;         // more entries than allowed: the rest was not read
  std::string errorText;          // the first row that is a server's error message in place of an entry
};

struct ListingRules {
  // The listed directory where it is known: a row that says "directory/name" is taken as "name". "./name"
  // always is; any other name with a slash is no entry.
  std::string_view directory = {};
  std::function<bool(const FtpEntry&)> wanted = {};  // null: all; it may throw
  std::size_t maxEntries = kMaxListingEntries;
  // Called every few thousand rows; it may throw.
  void (*betweenRows)() = nullptr;
};

enum class ListingForm { facts, rows };  // of MLSD, of LIST

// One reading of the rows of a listing.
class ListingPass {
 public:
  // The rules outlive it.
  ListingPass(ListingForm form, std::int64_t now, const ListingRules& rules)
      : rules_(&rules), form_(form), reader_(now, rules.directory) {}

  void take(std::string_view line);
  [[nodiscard]] ListReader& reader() noexcept { return reader_; }
  // Once, behind the last row.
  [[nodiscard]] FtpListing finish();

 private:
  RowKind read(std::string_view line);
  void keepLast();

  const ListingRules* rules_;
  ListingForm form_;
  ListReader reader_;
  FtpListing listing_;
  FtpEntry row_;   // that is being read
  FtpEntry last_;  // the last entry, where there is one: the next row may tell more of it
  std::size_t taken_ = 0;
};

class ListingReader {
 public:
  // `now` as for parseListLine().
  ListingReader(ListingForm form, std::int64_t now, ListingRules rules)
      : rules_(std::move(rules)), form_(form), pass_(form, now, rules_) {}
  ListingReader(const ListingReader&) = delete;
  ListingReader& operator=(const ListingReader&) = delete;

  // Lines end in LF or CR LF; in CR alone where the text has no LF at all.
  void take(std::string_view piece);
  // Some of a text has come.
  [[nodiscard]] bool begun() const noexcept { return lineFeeds_ || !rest_.empty(); }
  // Once, behind the last piece. The rows of LIST may tell of one another: headers name the dialect, a name
  // may stand alone in its row, of several versions of a file the first has the name and the others have it
  // with their version; and where all rows of Unix show a year with a clock behind it, that is no part of the
  // name.
  [[nodiscard]] FtpListing finish();

 private:
  void takeLine(std::string_view line);
  void takeLinesOfRest();

  const ListingRules rules_;
  const ListingForm form_;
  ListingPass pass_;
  std::optional<ListingPass> clocksBehindYears_;  // the same rows, as long as they may have such clocks
  std::string rest_;                              // the last row so far, or all as long as no LF has come
  bool lineFeeds_ = false;
};

}  // namespace internet
