// SPDX-License-Identifier: MIT
// The times of a listing's entries are local calendar times. The program runs in Berlin's zone (TZ).
#include <gtest/gtest.h>

#include <cstdint>

#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"
#include "tests/support/GivenZone.h"

namespace {

std::uint64_t fileTime(const QXFileTime& time) { return std::uint64_t{time.nHigh} << 32 | time.nLow; }

class EntryTimes : public testing_support::InGivenZone {
 protected:
  RecordingClient client;
  ScriptedFinder finder;

  QXDirEntry listed(std::int64_t time) {
    client.finder = &finder;
    finder.answersWith({{.name = "a", .time = time}});
    std::uint32_t count = 0;
    QXDirEntry entry{};
    EXPECT_EQ(client.FTPGetDirectory("/", nullptr, &count, "*.*", 0), 1);
    EXPECT_EQ(client.FTPGetDirectory("/", &entry, &count, "*.*", 0), 1);
    return entry;
  }
};

TEST_F(EntryTimes, AWinterMomentIsShownOneHourAheadOfUtc) {
  // 2024-01-02 03:04:05 UTC is 04:04:05 in Berlin.
  EXPECT_EQ(fileTime(listed(1704164645).ftLastWriteTime), 133486382450000000u + 36000000000u);
}

TEST_F(EntryTimes, ASummerMomentIsShownTwoHoursAheadOfUtc) {
  // 2024-07-02 03:04:05 UTC is 05:04:05 in Berlin.
  EXPECT_EQ(fileTime(listed(1719889445).ftLastWriteTime), 133643630450000000u + 72000000000u);
}

TEST_F(EntryTimes, AllThreeTimesAreGiven) {
  const QXDirEntry entry = listed(1704164645);
  EXPECT_EQ(fileTime(entry.ftCreationTime), fileTime(entry.ftLastWriteTime));
  EXPECT_EQ(fileTime(entry.ftLastAccessTime), fileTime(entry.ftLastWriteTime));
}

TEST_F(EntryTimes, EachTimeStandsInItsOwnPlace) {
  finder.createdBefore = 60;
  finder.accessedAfter = 7;
  const QXDirEntry entry = listed(1704164645);
  const std::uint64_t written = fileTime(entry.ftLastWriteTime);
  EXPECT_EQ(written - fileTime(entry.ftCreationTime), 60u * 10'000'000);
  EXPECT_EQ(fileTime(entry.ftLastAccessTime) - written, 7u * 10'000'000);
}

TEST_F(EntryTimes, AnUnknownTimeIsZero) {
  const QXDirEntry entry = listed(0);
  EXPECT_EQ(fileTime(entry.ftCreationTime), 0u);
  EXPECT_EQ(fileTime(entry.ftLastAccessTime), 0u);
  EXPECT_EQ(fileTime(entry.ftLastWriteTime), 0u);
}

}  // namespace
