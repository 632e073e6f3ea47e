// SPDX-License-Identifier: MIT
// The question for the system's generation.
#include "dialogs/SystemGeneration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using testing::ElementsAre;

// What the system answers, and the sizes that it was asked with.
struct Answer {
  std::vector<DWORD> acceptedSizes;
  DWORD platform = VER_PLATFORM_WIN32_NT;
  DWORD major = 5;
};
Answer g_answer;
std::vector<DWORD> g_askedSizes;

BOOL WINAPI answerQuery(OSVERSIONINFOA* info) {
  const DWORD size = info->dwOSVersionInfoSize;
  g_askedSizes.push_back(size);
  const auto& accepted = g_answer.acceptedSizes;
  if (std::find(accepted.begin(), accepted.end(), size) == accepted.end()) return FALSE;
  info->dwPlatformId = g_answer.platform;
  info->dwMajorVersion = g_answer.major;
  return TRUE;
}

bool ask(const Answer& answer) {
  g_answer = answer;
  g_askedSizes.clear();
  return IsNewGeneration(&answerQuery);
}

TEST(SystemGeneration, AsksWithTheExtendedRecordFirst) {
  EXPECT_TRUE(ask({.acceptedSizes = {148, 156}}));
  EXPECT_THAT(g_askedSizes, ElementsAre(156));
}

TEST(SystemGeneration, AsksWithThePlainRecordNext) {
  EXPECT_TRUE(ask({.acceptedSizes = {148}}));
  EXPECT_THAT(g_askedSizes, ElementsAre(156, 148));
}

TEST(SystemGeneration, IsOldWithoutAnAnswer) {
  EXPECT_FALSE(ask({.acceptedSizes = {}}));
  EXPECT_THAT(g_askedSizes, ElementsAre(156, 148));
}

TEST(SystemGeneration, IsNewFromMajorVersionFiveOnInTheNtFamilyAlone) {
  EXPECT_FALSE(ask({.acceptedSizes = {156}, .major = 4}));
  EXPECT_TRUE(ask({.acceptedSizes = {156}, .major = 6}));
  EXPECT_TRUE(ask({.acceptedSizes = {156}, .major = 10}));
  EXPECT_FALSE(ask({.acceptedSizes = {156}, .platform = VER_PLATFORM_WIN32_WINDOWS, .major = 5}));
}

TEST(SystemGeneration, IsNewOnEverySystemServed) { EXPECT_TRUE(IsNewGeneration()); }

}  // namespace
