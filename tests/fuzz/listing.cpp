// SPDX-License-Identifier: MIT
// Whole listings in both forms. Reading the rows one by one must come to the same entries, and so must the
// same text in pieces.
#include <algorithm>
#include <vector>

#include "framework/internet/listing/ListReader.h"
#include "tests/fuzz/Invariants.h"
#include "tests/support/WholeListing.h"

namespace {

using internet::FtpEntry;
using testing_support::parseList;
using testing_support::parseMlsd;
using testing_support::WholeListing;

constexpr std::int64_t kNow = 1'718'452'800;

struct RowByRow {
  std::vector<FtpEntry> entries;
  std::size_t rows = 0;
};

template <class ReadRow>
RowByRow readRowByRow(std::string_view text, ReadRow readRow) {
  RowByRow result;
  const char end = text.find('\n') == std::string_view::npos ? '\r' : '\n';
  while (!text.empty()) {
    std::string_view row = text.substr(0, text.find(end));
    text.remove_prefix(std::min(row.size() + 1, text.size()));
    while (row.ends_with('\r')) row.remove_suffix(1);
    ++result.rows;
    readRow(row, result.entries);
  }
  return result;
}

void requireSame(const RowByRow& expected, const WholeListing& listing) {
  const auto& entries = expected.entries;
  fuzz::require(
      std::equal(entries.begin(), entries.end(), listing.entries.begin(), listing.entries.end(), fuzz::same));
  fuzz::require(listing.entries.size() + listing.unparsedLines <= expected.rows);
}

RowByRow readListRows(std::string_view text, internet::ListReader& reader) {
  return readRowByRow(text, [&](std::string_view row, std::vector<FtpEntry>& entries) {
    FtpEntry entry;
    const internet::RowKind kind = reader.read(row, entry);
    if (kind == internet::RowKind::entry) entries.push_back(entry);
    if (kind == internet::RowKind::rest) internet::takeRest(entry, entries.back());
  });
}

RowByRow readListRows(std::string_view text) {
  internet::ListReader reader(kNow, {});
  RowByRow result = readListRows(text, reader);
  if (!reader.clocksAreInNames()) return result;
  internet::ListReader again(kNow, {});
  again.takeClocksBehindYears();
  return readListRows(text, again);
}

RowByRow readFacts(std::string_view text) {
  return readRowByRow(text, [](std::string_view row, std::vector<FtpEntry>& entries) {
    if (FtpEntry entry; internet::parseMlsxLine(row, entry)) entries.push_back(entry);
  });
}

void check(std::string_view text, const WholeListing& listing) {
  for (const FtpEntry& entry : listing.entries) fuzz::requireSound(entry);
  fuzz::require(!listing.overLimit);
  fuzz::require(listing.cutInLine == (!text.empty() && text.back() != '\n' &&
                                      (text.back() != '\r' || text.find('\n') != std::string_view::npos)));
  fuzz::require(!listing.lastLineUnparsed || listing.unparsedLines > 0);
}

void requireAlike(const WholeListing& a, const WholeListing& b) {
  fuzz::require(
      std::equal(a.entries.begin(), a.entries.end(), b.entries.begin(), b.entries.end(), fuzz::same));
  fuzz::require(a.rows == b.rows && a.unparsedLines == b.unparsedLines && a.overLimit == b.overLimit);
  fuzz::require(a.cutInLine == b.cutInLine && a.lastLineUnparsed == b.lastLineUnparsed);
  fuzz::require(a.errorText == b.errorText);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  const WholeListing list = parseList(text, kNow);
  check(text, list);
  requireSame(readListRows(text), list);
  for (const std::size_t piece : {1u, 2u, 3u, 64u}) requireAlike(list, parseList(text, kNow, {}, piece));
  const WholeListing facts = parseMlsd(text);
  check(text, facts);
  requireSame(readFacts(text), facts);
  for (const std::size_t piece : {1u, 7u}) requireAlike(facts, parseMlsd(text, {}, piece));

  const WholeListing limited = parseList(text, kNow, {.directory = "/d", .maxEntries = 2});
  for (const FtpEntry& entry : limited.entries) fuzz::requireSound(entry);
  fuzz::require(limited.entries.size() <= 2 && (!limited.overLimit || limited.entries.size() == 2));
  return 0;
}
