// SPDX-License-Identifier: MIT
// What the rows of all dialects say: each alone behind its header, and all of a dialect in one listing.
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "framework/internet/listing/CivilTime.h"
#include "framework/text/AsciiText.h"
#include "tests/internet/DialectRows.h"
#include "tests/support/WholeListing.h"

namespace internet_tests {

void PrintTo(const DialectRows& rows, std::ostream* out) { *out << rows.source; }

namespace {

using internet::CivilTime;
using internet::FtpEntry;
using testing_support::WholeListing;

const std::int64_t kNow = *internet::unixSeconds({.year = 2026, .month = 11, .day = 22, .hour = 12});

std::int64_t secondsOf(std::string_view time) {
  if (time.empty()) return 0;
  CivilTime civil;
  EXPECT_TRUE(ascii::readNumber(time.substr(0, 4), civil.year));
  EXPECT_TRUE(ascii::readNumber(time.substr(5, 2), civil.month));
  EXPECT_TRUE(ascii::readNumber(time.substr(8, 2), civil.day));
  EXPECT_TRUE(time.size() == 10 || internet::readClock(time.substr(11), civil));
  return internet::unixSeconds(civil).value_or(-1);
}

void expectEntry(const FtpEntry& entry, const DialectRow& row) {
  EXPECT_EQ(entry.name, row.name) << row.line;
  EXPECT_EQ(entry.isDirectory, row.kind == Kind::directory) << row.line;
  EXPECT_EQ(entry.isLink, row.kind == Kind::link) << row.line;
  EXPECT_EQ(entry.size, row.size) << row.line;
  EXPECT_EQ(entry.modified, secondsOf(row.time)) << row.line;
}

std::string textOf(std::string_view header, const std::vector<DialectRow>& rows) {
  std::string text(header);
  for (const DialectRow& row : rows) text.append(row.line).append("\r\n");
  return text;
}

WholeListing listingOf(std::string_view header, const std::vector<DialectRow>& rows) {
  return testing_support::parseList(textOf(header, rows), kNow);
}

class Rows : public ::testing::TestWithParam<DialectRows> {};

TEST_P(Rows, AreReadInOneListing) {
  const WholeListing listing = listingOf(GetParam().header, GetParam().rows);
  EXPECT_EQ(listing.unparsedLines, 0u);
  for (const DialectRow& row : GetParam().rows) {
    EXPECT_EQ(listingOf(GetParam().header, {row}).entries.size(), 1u) << row.line;
  }
  ASSERT_EQ(listing.entries.size(), GetParam().rows.size());
  for (std::size_t i = 0; i < listing.entries.size(); ++i) {
    expectEntry(listing.entries[i], GetParam().rows[i]);
  }
}

TEST_P(Rows, AreReadAlikeWhereverAPieceOfTheListingEnds) {
  const std::string text = textOf(GetParam().header, GetParam().rows);
  for (const std::size_t piece : {1u, 2u, 3u, 7u, 80u}) {
    const WholeListing listing = testing_support::parseList(text, kNow, {}, piece);
    ASSERT_EQ(listing.entries.size(), GetParam().rows.size()) << piece;
    for (std::size_t i = 0; i < listing.entries.size(); ++i) {
      expectEntry(listing.entries[i], GetParam().rows[i]);
    }
  }
}

// Without one that tells a zone: the clocks are the server's.
TEST_P(Rows, TellWhetherTheClockIsTheServers) {
  for (const FtpEntry& entry : listingOf(GetParam().header, GetParam().rows).entries) {
    const bool hasClock = GetParam().name != "Eplf" && entry.modified % 86400 != 0;
    EXPECT_EQ(entry.inServersZone, hasClock) << entry.name;
  }
}

std::vector<DialectRows> allRows() {
  std::vector<DialectRows> all = platformRows();
  all.insert(all.end(), unixRows().begin(), unixRows().end());
  return all;
}

INSTANTIATE_TEST_SUITE_P(Of, Rows, ::testing::ValuesIn(allRows()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(DialectRowsTable, HoldsManyRowsWithTheirSources) {
  std::size_t rows = 0;
  for (const DialectRows& each : allRows()) {
    rows += each.rows.size();
    EXPECT_FALSE(each.source.empty()) << each.name;
  }
  EXPECT_GE(rows, 150u);
}

}  // namespace
}  // namespace internet_tests
