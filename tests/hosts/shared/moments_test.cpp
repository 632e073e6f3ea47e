// SPDX-License-Identifier: MIT
#include "hosts/shared/Moments.h"

#include <gtest/gtest.h>

#include "hosts/shared/ListingWatch.h"

namespace hosts {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::sys_seconds kNoon = std::chrono::sys_days{std::chrono::year{2024} / 2 / 29} + 12h;

Moment at(std::chrono::seconds after, Precision precision = Precision::second) {
  return {kNoon + after, precision};
}

QXFileTime calendar(std::chrono::seconds inDay) {
  const auto units = static_cast<std::uint64_t>((154'000LL * 24h + inDay) / 1s) * 10'000'000;
  return {static_cast<std::uint32_t>(units), static_cast<std::uint32_t>(units >> 32)};
}

TEST(Moments, SecondsDifferButForWhatFileSystemsRound) {
  EXPECT_TRUE(canBeSame(at(0s), at(1s)));
  EXPECT_FALSE(canBeSame(at(0s), at(2s)));
  EXPECT_FALSE(isSurelyLater(at(1s), at(0s)));
  EXPECT_TRUE(isSurelyLater(at(2s), at(0s)));
  EXPECT_FALSE(isSurelyLater(at(-2s), at(0s)));
}

TEST(Moments, ATimeInMinutesIsThatOfEverySecondInIt) {
  EXPECT_TRUE(canBeSame(at(59s), at(0s, Precision::minute)));
  EXPECT_FALSE(canBeSame(at(60s), at(0s, Precision::minute)));
  EXPECT_FALSE(isSurelyLater(at(59s), at(0s, Precision::minute)));
}

TEST(Moments, ADayIsThatOfAnyZone) {
  EXPECT_TRUE(canBeSame(at(37h), at(0s, Precision::day)));
  EXPECT_TRUE(canBeSame(at(0s, Precision::day), at(-14h)));
  EXPECT_FALSE(canBeSame(at(48h), at(0s, Precision::day)));
}

TEST(Moments, ACalendarTimeIsThatOfThisZone) {
  const QXFileTime noon = calendar(12h);
  EXPECT_EQ(momentOf(calendar(12h + 5s)) - momentOf(noon), 5s);
  EXPECT_LE(std::chrono::abs(momentOf(noon) -
                             (std::chrono::sys_days{std::chrono::year{1601} / 1 / 1} + 154'000 * 24h + 12h)),
            26h);
}

struct Told {
  const char* command;
  std::chrono::seconds inDay;
  Precision precision;
};

class ToldTimes : public testing::TestWithParam<Told> {};

TEST_P(ToldTimes, AreAsExactAsTheListing) {
  ListingWatch watch;
  watch.take(std::string("> ") + GetParam().command);
  QXDirEntry entry{};
  entry.ftLastWriteTime = calendar(GetParam().inDay);
  EXPECT_EQ(watch.precisionOf(entry), GetParam().precision);
}

INSTANTIATE_TEST_SUITE_P(Listings, ToldTimes,
                         testing::Values(Told{"MLSD /pub", 0s, Precision::second},
                                         Told{"LIST", 3h + 5s, Precision::second},
                                         Told{"LIST -a", 3h + 120s, Precision::minute},
                                         Told{"LIST", 0s, Precision::day}));

class Watched : public testing::Test {
 protected:
  void tell(std::initializer_list<const char*> lines) {
    watch.begin();
    for (const char* line : lines) watch.take(line);
  }
  ListingWatch watch;
};

TEST_F(Watched, AListingHasComeWhenTheServerHasEndedIt) {
  tell({"> EPSV", "< 229 ok", "> MLSD /a", "< 150 now", "< 226 done"});
  EXPECT_TRUE(watch.hasCome());
  tell({"> MLSD /a", "< 150 now"});
  EXPECT_FALSE(watch.hasCome());
  tell({"> MLSD /a", "< 550 no", "> CWD /a", "< 250 ok"});
  EXPECT_FALSE(watch.hasCome());
  EXPECT_EQ(watch.refusal(), "550 no");
}

TEST_F(Watched, WhatTheServerRefusesAfterwardsLeavesTheListing) {
  tell({"> LIST", "< 150 now", "< 226 done", "> MDTM /a", "< 550 no", "> CWD /", "< 250 ok"});
  EXPECT_TRUE(watch.hasCome());
}

TEST_F(Watched, AFolderThatTheServerCannotOpenHasNoListingThoughItEndsLikeOne) {
  tell({"> LIST", "< 150 now", "< 226 Transfer done (but failed to open directory)."});
  EXPECT_FALSE(watch.hasCome());
}

}  // namespace
}  // namespace hosts
