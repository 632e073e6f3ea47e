// SPDX-License-Identifier: MIT
#include "hosts/shared/TransferProgress.h"

#include <gtest/gtest.h>

namespace hosts {
namespace {

using namespace std::chrono_literals;

constexpr TransferProgress::Time kStart{1h};

TEST(TransferProgress, OfOneFileTellsPercentRateAndTimeLeft) {
  TransferProgress progress(1, 10'000);
  progress.begin("a", 10'000, kStart);
  progress.moved(2'500, kStart + 1s);
  const ProgressFigures figures = progress.at(kStart + 1s);
  EXPECT_EQ(figures.name, "a");
  EXPECT_EQ(figures.file.percent(), 25U);
  EXPECT_DOUBLE_EQ(figures.rate, 2'500);
  EXPECT_EQ(figures.file.left, 3s);
  EXPECT_EQ(figures.total.left, 3s);
}

TEST(TransferProgress, TellsNoTimeLeftBeforeItHasARate) {
  TransferProgress progress(1, 10'000);
  progress.begin("a", 10'000, kStart);
  progress.moved(100, kStart + 1ms);
  EXPECT_FALSE(progress.at(kStart + 1ms).file.left);
}

TEST(TransferProgress, TheRateFollowsSlowlyAndSettles) {
  TransferProgress progress(1, 1'000'000);
  progress.begin("a", 1'000'000, kStart);
  std::uint64_t bytes = 0;
  auto now = kStart;
  const auto run = [&](std::uint64_t each, int seconds) {
    for (int i = 0; i < seconds; ++i) progress.moved(bytes += each, now += 1s);
    return progress.at(now).rate;
  };
  EXPECT_DOUBLE_EQ(run(1'000, 10), 1'000);
  const double soon = run(5'000, 1);
  EXPECT_GT(soon, 1'500);
  EXPECT_LT(soon, 3'000);
  EXPECT_NEAR(run(5'000, 40), 5'000, 5);
}

TEST(TransferProgress, TheRateOfAStalledTransferFalls) {
  TransferProgress progress(1, 10'000);
  progress.begin("a", 10'000, kStart);
  progress.moved(1'000, kStart + 1s);
  for (int i = 2; i < 60; ++i) static_cast<void>(progress.at(kStart + 1s * i));
  EXPECT_LT(progress.at(kStart + 60s).rate, 1);
  EXPECT_FALSE(progress.at(kStart + 60s).file.left);
}

TEST(TransferProgress, SumsUpFiles) {
  TransferProgress progress(3, 1'000);
  progress.begin("a", 200, kStart);
  progress.end(true, kStart + 1s);
  progress.begin("b", 600, kStart + 1s);
  progress.moved(300, kStart + 2s);
  const ProgressFigures figures = progress.at(kStart + 2s);
  EXPECT_EQ(figures.filesDone, 1U);
  EXPECT_EQ(figures.filesInAll, 3U);
  EXPECT_EQ(figures.total.done, 500U);
  EXPECT_EQ(figures.total.percent(), 50U);
}

TEST(TransferProgress, WhatHasNotComeOfAFailedFileIsNoLongerExpected) {
  TransferProgress progress(2, 1'000);
  progress.begin("a", 600, kStart);
  progress.moved(100, kStart);
  progress.end(false, kStart);
  progress.begin("b", 400, kStart);
  progress.end(true, kStart);
  EXPECT_EQ(progress.at(kStart).total.percent(), 100U);
  EXPECT_EQ(progress.at(kStart).total.done, 500U);
}

TEST(TransferProgress, AFileOfUnknownSizeHasBytesAndNoPercent) {
  TransferProgress progress(1, std::nullopt);
  progress.begin("a", std::nullopt, kStart);
  progress.moved(1'000, kStart + 1s);
  const ProgressFigures figures = progress.at(kStart + 1s);
  EXPECT_FALSE(figures.file.percent());
  EXPECT_FALSE(figures.file.left);
  EXPECT_EQ(figures.file.done, 1'000U);
  EXPECT_DOUBLE_EQ(figures.rate, 1'000);
}

TEST(TransferProgress, NothingIsDoneInFull) {
  EXPECT_EQ((Amount{0, 0, {}}).percent(), 100U);
  EXPECT_EQ((Amount{99'999, 100'000, {}}).percent(), 99U) << "not before all is there";
  EXPECT_EQ((Amount{7, 5, {}}).percent(), 100U);
}

}  // namespace
}  // namespace hosts
