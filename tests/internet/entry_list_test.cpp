// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "framework/internet/listing/EntryList.h"

namespace internet {
namespace {

FtpEntry numbered(unsigned number) {
  FtpEntry entry;
  entry.name = "entry " + std::string(number % 3000, 'x') + std::to_string(number);
  entry.size = (std::uint64_t{number} << 33) + 1;
  entry.modified = -std::int64_t{number} * 5'000'000'000;
  entry.attributes = kEntryNormal | (number & kEntryReadOnly);
  entry.isDirectory = number % 2 == 0;
  entry.isLink = number % 3 == 0;
  entry.inServersZone = number % 5 == 0;
  return entry;
}

void expectSame(const EntryFacts& facts, const EntryFacts& expected) {
  EXPECT_EQ(facts.size, expected.size);
  EXPECT_EQ(facts.modified, expected.modified);
  EXPECT_EQ(facts.attributes, expected.attributes);
  EXPECT_EQ(facts.isDirectory, expected.isDirectory);
  EXPECT_EQ(facts.isLink, expected.isLink);
  EXPECT_EQ(facts.inServersZone, expected.inServersZone);
}

EntryList filled(unsigned count) {
  EntryList list;
  for (unsigned i = 0; i < count; ++i) list.add(numbered(i));
  return list;
}

TEST(EntryList, GivesBackWhatWasAddedInItsOrder) {
  EntryList list = filled(500);
  EXPECT_EQ(list.size(), 500u);
  FtpEntry entry;
  for (unsigned i = 0; i < 500; ++i) {
    ASSERT_TRUE(list.takeFirst(entry));
    EXPECT_EQ(entry.name, numbered(i).name);
    expectSame(entry, numbered(i));
    EXPECT_EQ(list.size(), 499u - i);
  }
  EXPECT_FALSE(list.takeFirst(entry));
  EXPECT_TRUE(list.empty());
}

TEST(EntryList, TakesMoreBehindEntriesThatWereTaken) {
  EntryList list = filled(2);
  FtpEntry entry;
  while (list.takeFirst(entry)) continue;
  list.add(numbered(7));
  ASSERT_TRUE(list.takeFirst(entry));
  EXPECT_EQ(entry.name, numbered(7).name);
}

TEST(EntryList, WalksOverWhatWasNotTakenYet) {
  EntryList list = filled(300);
  FtpEntry entry;
  ASSERT_TRUE(list.takeFirst(entry));
  list.changeEach([](EntryFacts& facts, std::string_view) { ++facts.size; });
  unsigned number = 1;
  list.forEach([&](const EntryFacts& facts, std::string_view name) {
    FtpEntry expected = numbered(number++);
    ++expected.size;
    EXPECT_EQ(name, expected.name);
    expectSame(facts, expected);
  });
  EXPECT_EQ(number, 300u);
}

TEST(EntryList, KnowsWhetherAllNamesAreAscii) {
  EntryList list = filled(3);
  EXPECT_TRUE(list.isAscii());
  FtpEntry entry;
  entry.name = "gr\xc3\xbc\xc3\x9f";
  list.add(entry);
  list.add(numbered(1));
  EXPECT_FALSE(list.isAscii());
}

}  // namespace
}  // namespace internet
