// SPDX-License-Identifier: MIT
// Whole listings in both forms. Reading the rows one by one must come to the same entries.
#include <algorithm>
#include <vector>

#include "tests/fuzz/Invariants.h"

namespace {

using internet::FtpEntry;
using internet::FtpListing;

constexpr std::int64_t kNow = 1'718'452'800;

template <class ReadRow>
void requireRowByRow(std::string_view text, const FtpListing& listing, ReadRow readRow) {
  std::vector<FtpEntry> entries;
  std::size_t rows = 0;
  const char end = text.find('\n') == std::string_view::npos ? '\r' : '\n';
  while (!text.empty()) {
    std::string_view row = text.substr(0, text.find(end));
    text.remove_prefix(std::min(row.size() + 1, text.size()));
    while (row.ends_with('\r')) row.remove_suffix(1);
    ++rows;
    if (FtpEntry entry; readRow(row, entry)) entries.push_back(entry);
  }
  fuzz::require(
      std::equal(entries.begin(), entries.end(), listing.entries.begin(), listing.entries.end(), fuzz::same));
  fuzz::require(listing.entries.size() + listing.unparsedLines <= rows);
}

void check(std::string_view text, const FtpListing& listing) {
  for (const FtpEntry& entry : listing.entries) fuzz::requireSound(entry);
  fuzz::require(!listing.overLimit);
  fuzz::require(listing.cutInLine == (!text.empty() && text.back() != '\n' &&
                                      (text.back() != '\r' || text.find('\n') != std::string_view::npos)));
  fuzz::require(!listing.lastLineUnparsed || listing.unparsedLines > 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  const FtpListing list = internet::parseList(text, kNow);
  check(text, list);
  requireRowByRow(text, list, [](std::string_view row, FtpEntry& entry) {
    return internet::parseListLine(row, kNow, entry);
  });
  const FtpListing facts = internet::parseMlsd(text);
  check(text, facts);
  requireRowByRow(text, facts, internet::parseMlsxLine);

  const FtpListing limited = internet::parseList(text, kNow, {.directory = "/d", .maxEntries = 2});
  for (const FtpEntry& entry : limited.entries) fuzz::requireSound(entry);
  fuzz::require(limited.entries.size() <= 2 && (!limited.overLimit || limited.entries.size() == 2));
  return 0;
}
