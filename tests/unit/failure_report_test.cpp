// SPDX-License-Identifier: MIT
// The failure report of an operation: "title text [number source line]".
#include <gtest/gtest.h>

#include <string>

#include "framework/platform/last_error.h"
#include "support/Diagnostics.h"
#include "tests/unit/SystemText.h"

namespace {

// The whole text of a report by the thread's last error, which is `error`.
std::string reportText(std::uint32_t error, int line, const char* title) {
  QXErrorInfo record{};
  platform::setLastError(error);
  TraceFailure(&record, line, title);
  return record.szText;
}

TEST(FailureReport, IsTitleErrorTextNumberSourceAndLine) {
  EXPECT_EQ(reportText(5, 4711, "TQXIP::Failure!"),
            "TQXIP::Failure! " + systemText(5) + " (0x5) [5 QXIP 4711]");
}

TEST(FailureReport, ErrorZeroGivesABlankAndTheNumberZero) {
  EXPECT_EQ(reportText(0, 4711, "Title"), "Title  [0 QXIP 4711]");
}

TEST(FailureReport, AnErrorWithoutATextStillShowsItsNumber) {
  EXPECT_EQ(reportText(0x2FFF1234, 1, "Title"), "Title  [805245492 QXIP 1]");
}

TEST(FailureReport, ANumberAbove31BitsIsShownSigned) {
  EXPECT_EQ(reportText(0xFFFFFFFE, 1, "Title").substr(0, 5), "Title");
  EXPECT_NE(reportText(0xFFFFFFFE, 1, "Title").find("[-2 QXIP 1]"), std::string::npos);
}

TEST(FailureReport, WithoutATitleItIsCalledError) {
  EXPECT_EQ(reportText(0, 7, nullptr), "Error  [0 QXIP 7]");
}

TEST(FailureReport, HasCategory1000) {
  QXErrorInfo record{};
  TraceFailure(&record, 1, "Title");
  EXPECT_EQ(record.bSet, 1u);
  EXPECT_EQ(record.nCode, 1000u);
}

TEST(FailureReport, TheNumberStoredIsReadAfterTheTextHasResetTheLastError) {
  QXErrorInfo record{};
  platform::setLastError(5);
  TraceFailure(&record, 1, "Title");
  EXPECT_EQ(record.nError, 0u);
  EXPECT_EQ(platform::lastError(), 0u);
}

TEST(FailureReport, AGivenNumberIsStoredAndShownInPlaceOfTheLastError) {
  QXErrorInfo record{};
  platform::setLastError(0);
  TraceFailure(&record, 1187, "timed out", 12002);
  EXPECT_EQ(record.nError, 12002u);
  EXPECT_EQ(record.nCode, 1000u);
  EXPECT_NE(std::string(record.szText).find("[12002 QXIP 1187]"), std::string::npos);
  EXPECT_EQ(std::string(record.szText).rfind("timed out ", 0), 0u);
}

TEST(FailureReport, TheHexFormOfAGivenNumbersTextIsStillThatOfTheLastError) {
  QXErrorInfo record{};
  platform::setLastError(0x10);
  TraceFailure(&record, 3, "Title", 5);
  EXPECT_EQ(record.szText, "Title " + systemText(5) + " (0x10) [5 QXIP 3]");
}

TEST(FailureReport, TheFirstOneStays) {
  QXErrorInfo record{};
  platform::setLastError(5);
  TraceFailure(&record, 1, "First");
  const std::string first = record.szText;
  platform::setLastError(2);
  TraceFailure(&record, 2, "Second");
  TraceFailure(&record, 3, "Third", 12002);
  EXPECT_EQ(record.szText, first);
  EXPECT_EQ(record.nError, 0u);
}

TEST(FailureReport, OneThatIsDroppedResetsTheLastErrorAsTheFirstDid) {
  QXErrorInfo record{};
  record.bSet = 1;
  platform::setLastError(5);
  TraceFailure(&record, 1, "Title");
  EXPECT_EQ(platform::lastError(), 0u);
}

TEST(FailureReport, WithoutARecordNothingChanges) {
  platform::setLastError(5);
  TraceFailure(nullptr, 1, "Title");
  TraceFailure(nullptr, 1, "Title", 12002);
  EXPECT_EQ(platform::lastError(), 5u);
}

TEST(FailureReport, ATitleThatIsTooLongIsLeftOutAndTheDetailStays) {
  EXPECT_EQ(reportText(0, 9, std::string(4200, 't').c_str()), "  [0 QXIP 9]");
}

}  // namespace
