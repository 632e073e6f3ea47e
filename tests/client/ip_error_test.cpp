// SPDX-License-Identifier: MIT
// OnIPError: its message, the counter that it re-arms, and the report that replaces any earlier one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"

namespace {

using Calls = std::vector<std::string>;

class IPError : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};

  // The counter after an error of a client that is connected or not.
  std::uint32_t counterAfter(std::uint32_t error, std::uint32_t counter, bool connected) {
    client.m_bConnected = connected ? 1 : 0;
    client.forget();
    client.OnIPError(error, "text", &counter);
    client.m_bConnected = 0;
    return counter;
  }
};

TEST_F(IPError, WritesTextAndNumberIntoTheMessage) {
  client.OnIPError(12007, "The name", nullptr);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::OnIPError: 'The name' (12007)");
}

TEST_F(IPError, WithoutATextTheMessageSaysNull) {
  client.OnIPError(12007, nullptr, nullptr);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::OnIPError: 'NULL'");
}

TEST_F(IPError, ReportsItsNumberUnderItsText) {
  client.OnIPError(12002, "timed out", nullptr);
  EXPECT_THAT(record, ReportsIPError("timed out", 12002));
}

TEST_F(IPError, ReportsUnderErrorWithoutAText) {
  client.OnIPError(12030, nullptr, nullptr);
  EXPECT_THAT(record, ReportsIPError("Error", 12030));
}

TEST_F(IPError, APlatformNumberIsShownWithTheSystemsText) {
  platform::setLastError(0x1234);
  client.OnIPError(5, "FTP-Error!", nullptr);
  // The record was cleared first, which resets the last error that the text ends with.
  EXPECT_EQ(record.szText, "FTP-Error! " + SystemText(5) + " (0x0) [5 QXIP 1187]");
  EXPECT_EQ(record.nError, 5u);
}

TEST_F(IPError, ErrorZeroIsReportedWithoutAText) {
  client.OnIPError(0, "FTP-Error!", nullptr);
  EXPECT_STREQ(record.szText, "FTP-Error!  [0 QXIP 1187]");
  EXPECT_EQ(record.bSet, 1u);
  EXPECT_EQ(record.nError, 0u);
}

TEST_F(IPError, ReplacesAnEarlierReport) {
  client.OnFailure();
  client.OnIPError(12002, "second", nullptr);
  EXPECT_THAT(record, ReportsIPError("second", 12002));
  client.OnIPError(12030, "third", nullptr);
  EXPECT_THAT(record, ReportsIPError("third", 12030));
}

TEST_F(IPError, NoLaterFailureReplacesItsReport) {
  client.OnIPError(12002, "first", nullptr);
  client.OnFailure();
  client.FTPSetProxy("x", 0);
  EXPECT_THAT(record, ReportsIPError("first", 12002));
}

TEST_F(IPError, WithoutAnErrorRecordOnlyTheMessageChanges) {
  RecordingClient silent;
  silent.OnIPError(12002, "text", nullptr);
  EXPECT_STREQ(silent.m_szMessage, "TQXIP::OnIPError: 'text' (12002)");
}

TEST_F(IPError, ATextThatIsTooLongIsLeftOutOfTheReportAndCutInTheMessage) {
  client.OnIPError(12002, std::string(6000, 't').c_str(), nullptr);
  EXPECT_STREQ(record.szText, "  [12002 QXIP 1187]");
  EXPECT_EQ(std::string(client.m_szMessage).size(), sizeof client.m_szMessage - 1);
}

TEST_F(IPError, ATimeOutOfAConnectedClientRaisesTheCounterFromZeroToOne) {
  EXPECT_EQ(counterAfter(12002, 0, true), 1u);
}

TEST_F(IPError, AnAbortedConnectionRaisesTheCounterFromZeroToOne) {
  EXPECT_EQ(counterAfter(12030, 0, true), 1u);
}

TEST_F(IPError, AHigherCounterStays) {
  EXPECT_EQ(counterAfter(12002, 5, true), 5u);
  EXPECT_EQ(counterAfter(12030, 0xFFFFFFFF, true), 0xFFFFFFFFu);
}

TEST_F(IPError, OtherErrorsLeaveTheCounterAlone) {
  for (const std::uint32_t error : {0u, 2u, 18u, 87u, 12001u, 12003u, 12007u, 12014u, 12029u, 12031u, 12037u,
                                    12038u, 12044u, 12045u, 12157u, 12169u, 12170u}) {
    EXPECT_EQ(counterAfter(error, 0, true), 0u) << "error " << error;
    EXPECT_EQ(counterAfter(error, 2, true), 2u) << "error " << error;
    EXPECT_EQ(client.count("FTPReConnect"), 0u) << "error " << error;
  }
}

TEST_F(IPError, AClientThatIsNotConnectedLeavesTheCounterAlone) {
  EXPECT_EQ(counterAfter(12002, 0, false), 0u);
  EXPECT_EQ(counterAfter(12030, 0, false), 0u);
  EXPECT_EQ(client.count("FTPReConnect"), 0u);
}

TEST_F(IPError, ReconnectsWithTheCounterAfterTheDisconnectHook) {
  EXPECT_EQ(counterAfter(12030, 0, true), 1u);
  EXPECT_EQ(client.calls(),
            (Calls{"OnIPError 12030 text retries 0", "OnAfterDisconnect", "FTPReConnect 1 0"}));
  EXPECT_EQ(counterAfter(12002, 4, true), 4u);
  EXPECT_EQ(client.calls(),
            (Calls{"OnIPError 12002 text retries 4", "OnAfterDisconnect", "FTPReConnect 4 0"}));
}

TEST_F(IPError, WithoutACounterNothingReconnects) {
  client.m_bConnected = 1;
  client.OnIPError(12002, "text", nullptr);
  EXPECT_EQ(client.calls(), (Calls{"OnIPError 12002 text"}));
  client.m_bConnected = 0;
}

TEST_F(IPError, ReconnectsBeforeItReports) {
  client.OnFailure();
  counterAfter(12030, 0, true);
  EXPECT_EQ(client.messageAt("FTPReConnect"), "TQXIP::OnIPError: 'text' (12030)");
  EXPECT_THAT(record, ReportsIPError("text", 12030));
}

// A host whose reconnect does not succeed.
class NoReconnect final : public TQXIP {
 public:
  using TQXIP::TQXIP;
  ~NoReconnect() = default;
  QXBool FTPReConnect(std::uint32_t, QXHostValue) override { return 0; }
};

TEST_F(IPError, AFailedReconnectSetsTheCounterToZero) {
  NoReconnect host(&record);
  host.m_bConnected = 1;
  std::uint32_t counter = 7;
  host.OnIPError(12002, "text", &counter);
  EXPECT_EQ(counter, 0u);
  host.m_bConnected = 0;
}

}  // namespace
