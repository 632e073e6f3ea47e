// SPDX-License-Identifier: MIT
// Message lines, error texts, and the rules of the host's error record.
#include "support/Diagnostics.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "framework/platform/last_error.h"
#include "tests/unit/SystemText.h"

namespace {

constexpr std::uint32_t kUseLastError = 0xFFFFFFFF;
constexpr std::uint32_t kNoSuchError = 0x2FFF1234;

std::string errorText(std::uint32_t error) {
  static ErrorText buffer;
  std::memset(buffer, 'x', sizeof buffer);
  EXPECT_EQ(GetErrorText(error, buffer), buffer);
  return buffer;
}

// What the system says, as the reports show it: without its line end.
bool isBlank(const QXErrorInfo& record) {
  const QXErrorInfo blank{};
  return std::memcmp(&record, &blank, sizeof record) == 0;
}

QXErrorInfo filled() {
  QXErrorInfo record{};
  record.bSet = 1;
  record.nCode = 7;
  record.nError = 8;
  std::snprintf(record.szText, sizeof record.szText, "first");
  return record;
}

TEST(TraceMessage, FormatsAndCountsTheCharacters) {
  char line[32] = "";
  EXPECT_EQ(TraceMessage(line, sizeof line, "TQXIP::%s '%s' (%d)", "Op", "a", 5), 17);
  EXPECT_STREQ(line, "TQXIP::Op 'a' (5)");
}

TEST(TraceMessage, CutsWhatDoesNotFitAndSaysHowMuchWasWritten) {
  char line[9] = "xxxxxxxx";
  EXPECT_EQ(TraceMessage(line, 8, "%s", "0123456789"), 7);
  EXPECT_STREQ(line, "0123456");
}

TEST(TraceMessage, CutsBetweenTwoCharacters) {
  char buffer[8];
  EXPECT_EQ(TraceMessage(buffer, sizeof buffer, "%s", "12345\xC3\xBC!"), 7);
  EXPECT_STREQ(buffer, "12345\xC3\xBC");
  EXPECT_EQ(TraceMessage(buffer, sizeof buffer, "%s", "123456\xC3\xBC"), 6);
  EXPECT_STREQ(buffer, "123456");
}

TEST(GetErrorText, ErrorZeroGivesAnEmptyTextAndKeepsTheLastError) {
  platform::setLastError(5);
  EXPECT_EQ(errorText(0), "");
  EXPECT_EQ(platform::lastError(), 5u);
}

TEST(GetErrorText, EndsWithTheLastErrorInHexNotWithTheNumberAskedFor) {
  platform::setLastError(0xAB);
  ASSERT_NE(systemText(2), "");
  EXPECT_EQ(errorText(2), systemText(2) + " (0xab)");
}

TEST(GetErrorText, ALastErrorOfZeroIsShownAsZero) {
  platform::setLastError(0);
  EXPECT_EQ(errorText(5), systemText(5) + " (0x0)");
}

TEST(GetErrorText, AllOnesAsksForTheLastError) {
  platform::setLastError(2);
  EXPECT_EQ(errorText(kUseLastError), systemText(2) + " (0x2)");
}

TEST(GetErrorText, AllOnesWithNoLastErrorIsEmpty) {
  platform::setLastError(0);
  EXPECT_EQ(errorText(kUseLastError), "");
}

TEST(GetErrorText, ResetsTheLastError) {
  platform::setLastError(2);
  errorText(5);
  EXPECT_EQ(platform::lastError(), 0u);
}

TEST(GetErrorText, ANumberWithoutATextGivesAnEmptyTextAndResetsTheLastErrorToo) {
  platform::setLastError(2);
  EXPECT_EQ(errorText(kNoSuchError), "");
  EXPECT_EQ(platform::lastError(), 0u);
}

TEST(GetErrorText, HasNoLineEnd) {
  platform::setLastError(0);
  EXPECT_EQ(errorText(87).find_first_of("\r\n"), std::string::npos);
}

TEST(GetSourceFileName, IsTheClientsSourceWithoutDirectories) {
  PathText name;
  GetSourceFileName(name);
  EXPECT_STREQ(name.c_str(), "QXIP");
}

TEST(ReportError, FillsAnEmptyRecord) {
  QXErrorInfo record{};
  ReportError(&record, false, "detail", 5, 1000, "Title");
  EXPECT_EQ(record.bSet, 1u);
  EXPECT_EQ(record.nCode, 1000u);
  EXPECT_EQ(record.nError, 5u);
  EXPECT_STREQ(record.szText, "Title detail");
}

TEST(ReportError, WithoutATitleItIsCalledError) {
  QXErrorInfo record{};
  ReportError(&record, false, "detail", 5, 1000, nullptr);
  EXPECT_STREQ(record.szText, "Error detail");
}

TEST(ReportError, AnEmptyTitleStaysEmpty) {
  QXErrorInfo record{};
  ReportError(&record, false, "detail", 5, 1000, "");
  EXPECT_STREQ(record.szText, " detail");
}

TEST(ReportError, DoesNothingForASuccess) {
  QXErrorInfo record{};
  ReportError(&record, true, "detail", 5, 1000, "Title");
  EXPECT_TRUE(isBlank(record));
}

TEST(ReportError, DoesNothingWithoutADetail) {
  QXErrorInfo record{};
  ReportError(&record, false, nullptr, 5, 1000, "Title");
  EXPECT_TRUE(isBlank(record));
}

TEST(ReportError, DoesNothingWithoutARecord) { ReportError(nullptr, false, "detail", 5, 1000, "Title"); }

TEST(ReportError, TheFirstErrorStays) {
  QXErrorInfo record = filled();
  const QXErrorInfo before = record;
  ReportError(&record, false, "second", 5, 1000, "Title");
  EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
}

TEST(ReportError, OnlyTheFirstByteOfTheFlagCounts) {
  QXErrorInfo record{};
  record.bSet = 0x100;
  ReportError(&record, false, "detail", 5, 1000, "Title");
  EXPECT_EQ(record.bSet, 1u);
  EXPECT_STREQ(record.szText, "Title detail");
}

TEST(ReportError, ADetailOf5000CharactersIsLeftOut) {
  QXErrorInfo record{};
  ReportError(&record, false, std::string(5000, 'd').c_str(), 5, 1000, "Title");
  EXPECT_EQ(record.bSet, 1u);
  EXPECT_STREQ(record.szText, "Title ");
}

TEST(ReportError, ATitleOf5000CharactersIsLeftOut) {
  QXErrorInfo record{};
  ReportError(&record, false, "detail", 5, 1000, std::string(5000, 't').c_str());
  EXPECT_STREQ(record.szText, " detail");
}

TEST(ReportError, TheTextHoldsUpTo4095Characters) {
  QXErrorInfo record{};
  const std::string detail(4095 - 2, 'd');
  ReportError(&record, false, detail.c_str(), 5, 1000, "T");
  EXPECT_EQ(record.szText, "T " + detail);
}

TEST(ReportError, ADetailThatFillsTheTextBeyondItsLimitIsLeftOut) {
  QXErrorInfo record{};
  ReportError(&record, false, std::string(4096 - 2, 'd').c_str(), 5, 1000, "T");
  EXPECT_STREQ(record.szText, "T ");
}

TEST(ReportErrorCode, StoresTheNumberWithTheSystemsTextAndNoCategory) {
  QXErrorInfo record{};
  platform::setLastError(0x11);
  ReportErrorCode(&record, false, 2);
  EXPECT_EQ(record.bSet, 1u);
  EXPECT_EQ(record.nCode, 0u);
  EXPECT_EQ(record.nError, 2u);
  EXPECT_EQ(record.szText, systemText(2) + " (0x11)");
}

TEST(ReportErrorCode, DoesNothingForASuccessAFilledRecordOrNone) {
  QXErrorInfo record{};
  ReportErrorCode(&record, true, 2);
  EXPECT_TRUE(isBlank(record));
  record = filled();
  ReportErrorCode(&record, false, 2);
  EXPECT_STREQ(record.szText, "first");
  ReportErrorCode(nullptr, false, 2);
}

TEST(StoreError, CopiesTheWholeRecord) {
  QXErrorInfo host{};
  QXErrorInfo record = filled();
  std::memset(record.szText, 'z', sizeof record.szText - 1);
  StoreError(&host, &record);
  EXPECT_EQ(std::memcmp(&host, &record, sizeof record), 0);
}

TEST(StoreError, DoesNothingWithAnEmptyRecordAFilledHostOrNull) {
  QXErrorInfo host{};
  QXErrorInfo empty = filled();
  empty.bSet = 0;
  StoreError(&host, &empty);
  EXPECT_TRUE(isBlank(host));

  host = filled();
  QXErrorInfo other = filled();
  other.nCode = 99;
  StoreError(&host, &other);
  EXPECT_EQ(host.nCode, 7u);

  StoreError(nullptr, &other);
  StoreError(&host, nullptr);
  EXPECT_EQ(host.nCode, 7u);
}

TEST(ClearErrorInfo, ZeroesTheWholeRecordAndTheLastError) {
  QXErrorInfo record;
  std::memset(&record, 0xEE, sizeof record);
  platform::setLastError(5);
  ClearErrorInfo(&record);
  EXPECT_TRUE(isBlank(record));
  EXPECT_EQ(platform::lastError(), 0u);
}

// It used to reset the last error although there was no record to clear.
TEST(ClearErrorInfo, WithoutARecordItDoesNothing) {
  platform::setLastError(5);
  ClearErrorInfo(nullptr);
  EXPECT_EQ(platform::lastError(), 5u);
}

TEST(TakeErrorInfo, MovesAHeldErrorIntoTheCopy) {
  QXErrorInfo record = filled();
  const QXErrorInfo before = record;
  QXErrorInfo copy;
  std::memset(&copy, 0xEE, sizeof copy);
  TakeErrorInfo(&record, &copy);
  EXPECT_EQ(std::memcmp(&copy, &before, sizeof copy), 0);
  EXPECT_TRUE(isBlank(record));
}

TEST(TakeErrorInfo, ZeroesTheCopyWhenThereIsNoError) {
  QXErrorInfo record{};
  QXErrorInfo copy = filled();
  TakeErrorInfo(&record, &copy);
  EXPECT_TRUE(isBlank(copy));
  copy = filled();
  TakeErrorInfo(nullptr, &copy);
  EXPECT_TRUE(isBlank(copy));
}

TEST(TakeErrorInfo, WithoutACopyTheRecordStays) {
  QXErrorInfo record = filled();
  TakeErrorInfo(&record, nullptr);
  EXPECT_EQ(record.bSet, 1u);
}

TEST(TakeErrorInfo, TheNextErrorIsStoredAgain) {
  QXErrorInfo record = filled();
  QXErrorInfo copy{};
  TakeErrorInfo(&record, &copy);
  ReportError(&record, false, "detail", 5, 1000, "Second");
  EXPECT_STREQ(record.szText, "Second detail");
}

}  // namespace
