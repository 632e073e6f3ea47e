// SPDX-License-Identifier: MIT
// Event hooks, the status dispatcher and the status texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "Src/TInternetSession.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"

namespace {

using Calls = std::vector<std::string>;

class Events : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};

  Calls statusTexts(std::uint32_t status, const void* information) {
    client.statusTexts.clear();
    client.OnStatusCallback(1, status, information);
    return client.statusTexts;
  }
};

TEST_F(Events, StatusTextsOfAllKnownCodes) {
  const std::map<std::uint32_t, std::string> texts{
      {10, "Resolving name ftp.host"},
      {11, "Name resolved ftp.host"},
      {20, "Connecting to socket address"},
      {21, "Connected to socket address"},
      {30, "Sending request"},
      {31, "Request sent"},
      {41, "Response received"},
      {50, "Closing the connection to the server"},
      {51, "Connection to the server closed"},
      {60, "Handle created"},
      {100, "Request complete"},
      {110, "Being redirected"},
  };
  for (const auto& [status, text] : texts) {
    EXPECT_EQ(statusTexts(status, "ftp.host"), Calls{text}) << "status " << status;
  }
}

TEST_F(Events, Status40And70PassNothingOn) {
  EXPECT_EQ(statusTexts(40, nullptr), Calls{});
  EXPECT_EQ(statusTexts(70, nullptr), Calls{});
}

TEST_F(Events, EveryOtherStatusIsUnknownAndNamedByItsCode) {
  const std::vector<std::uint32_t> known{10, 11, 20, 21, 30, 31, 40, 41, 50, 51, 60, 70, 100, 110};
  for (std::uint32_t status = 0; status <= 130; ++status) {
    if (std::find(known.begin(), known.end(), status) != known.end()) continue;
    EXPECT_EQ(statusTexts(status, "x"), Calls{"Unknown status: " + std::to_string(status)});
  }
  EXPECT_EQ(statusTexts(0xFFFFFFFF, nullptr), Calls{"Unknown status: -1"});
}

TEST_F(Events, ANameThatIsNotGivenIsLeftOut) {
  EXPECT_EQ(statusTexts(10, nullptr), Calls{"Resolving name "});
  EXPECT_EQ(statusTexts(11, nullptr), Calls{"Name resolved "});
}

TEST_F(Events, AVeryLongNameIsCutNotOverrun) {
  const std::string name(100000, 'n');
  const Calls texts = statusTexts(10, name.c_str());
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_TRUE(texts[0].starts_with("Resolving name nnnn"));
}

TEST_F(Events, ANameAsLongAsNamesCanBeIsShownWhole) {
  const std::string name(255, 'n');
  EXPECT_EQ(statusTexts(11, name.c_str()), Calls{"Name resolved " + name});
}

TEST_F(Events, StatusTextsChangeNothingElse) {
  statusTexts(20, nullptr);
  statusTexts(50, nullptr);
  EXPECT_EQ(client.m_bConnected, 0);
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(client.calls().empty());
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Events, DispatcherKnowsFiveCodesAndIgnoresTheRest) {
  const std::map<std::uint32_t, std::string> hooks{
      {11, "OnSuccess"}, {20, "OnConnect"}, {50, "OnDisconnect"}, {51, "OnDisconnect"}, {100, "OnSuccess"}};
  for (std::uint32_t status = 0; status <= 130; ++status) {
    client.forget();
    DispatchStatus({&client, &record}, 1, status, nullptr, 0);
    const auto hook = hooks.find(status);
    EXPECT_EQ(client.calls(), hook == hooks.end() ? Calls{} : Calls{hook->second}) << "status " << status;
  }
}

TEST_F(Events, DispatcherKeepsTheConnectedFlag) {
  const SessionOwner owner{&client, &record};
  DispatchStatus(owner, 1, 20, nullptr, 0);
  EXPECT_EQ(client.m_bConnected, 1);
  DispatchStatus(owner, 1, 50, nullptr, 0);
  EXPECT_EQ(client.m_bConnected, 0);
  DispatchStatus(owner, 1, 20, nullptr, 0);
  DispatchStatus(owner, 1, 51, nullptr, 0);
  EXPECT_EQ(client.m_bConnected, 0);
}

TEST_F(Events, DispatcherDoesNothingWithoutAnErrorRecordOrAClient) {
  for (const std::uint32_t status : {11u, 20u, 50u, 51u, 100u}) {
    DispatchStatus({&client, nullptr}, 1, status, nullptr, 0);
    DispatchStatus({nullptr, &record}, 1, status, nullptr, 0);
  }
  EXPECT_TRUE(client.calls().empty());
  EXPECT_EQ(client.m_bConnected, 0);
}

struct Notification {
  const TQXIP* client;
  const QXErrorInfo* record;
  std::uintptr_t context;
  std::uint32_t status;
  std::string information;
  std::uint32_t length;
};
std::vector<Notification> g_notifications;

void note(const SessionOwner& owner, std::uintptr_t context, std::uint32_t status, void* information,
          std::uint32_t length) {
  g_notifications.push_back({owner.pQXIP, owner.pErrorInfo, context, status,
                             information != nullptr ? static_cast<const char*>(information) : "", length});
}

TEST_F(Events, ASessionForwardsItsNotificationsToItsDispatcherUnchanged) {
  TInternetSession session(&record, &client, &note);
  char name[] = "host";
  g_notifications.clear();
  session.OnStatusCallback(7, 11, name, 5);
  ASSERT_EQ(g_notifications.size(), 1u);
  const Notification& seen = g_notifications[0];
  EXPECT_EQ(seen.client, &client);
  EXPECT_EQ(seen.record, &record);
  EXPECT_EQ(seen.context, 7u);
  EXPECT_EQ(seen.status, 11u);
  EXPECT_EQ(seen.information, "host");
  EXPECT_EQ(seen.length, 5u);
}

TEST_F(Events, ASessionWithoutADispatcherIsSilent) {
  TInternetSession session(&record, &client, nullptr);
  session.OnStatusCallback(1, 20, nullptr, 0);
  EXPECT_TRUE(client.calls().empty());
}

TEST_F(Events, ASessionHasTheContext1) {
  TInternetSession session(&record, &client, nullptr);
  EXPECT_EQ(session.GetContext(), 1u);
}

TEST_F(Events, BeforeAndAfterDisconnectDoNothingAndAreTrue) {
  EXPECT_EQ(client.OnBeforeDisconnect(), 1);
  EXPECT_EQ(client.OnAfterDisconnect(), 1);
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Events, TheRemainingHooksDoNothing) {
  client.m_bConnected = 1;
  client.OnSuccess();
  client.OnTransactionStart();
  client.OnTransactionStop();
  client.OnStatus("text");
  client.OnStatus(nullptr);
  client.OnStatusText("text");
  client.OnNotify(5);
  EXPECT_EQ(client.m_bConnected, 1);
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
  client.m_bConnected = 0;
}

TEST_F(Events, OnPollNeitherCancelsNorAsksForAReconnect) {
  QXBool reconnect = 7;
  EXPECT_EQ(client.OnPoll(1, 2, 3, &reconnect), 0);
  EXPECT_EQ(reconnect, 7);
  EXPECT_EQ(client.OnPoll(0, 0, 0, nullptr), 0);
}

TEST_F(Events, ReConnectIsTrueAtOnceAndDoesNothing) {
  EXPECT_EQ(client.FTPReConnect(0, 0), 1);
  EXPECT_EQ(client.FTPReConnect(0xFFFFFFFF, 5), 1);
  EXPECT_EQ(client.m_pFtpConnection, nullptr);
  EXPECT_STREQ(client.m_szMessage, "");
}

// A hook or an operation without a path: its title stands in the message and in the report.
struct Titled {
  const char* name;
  const char* title;
  int line;
  void (*run)(TQXIP& client);
};

class TitledFailure : public Events, public testing::WithParamInterface<Titled> {};

TEST_P(TitledFailure, WritesItsTitleAndReports) {
  platform::setLastError(5);
  GetParam().run(client);
  EXPECT_STREQ(client.m_szMessage, GetParam().title);
  EXPECT_THAT(record, ReportsLastError(GetParam().title, 5u, GetParam().line));
}

TEST_P(TitledFailure, LeavesAnEarlierReportAlone) {
  client.OnIPError(12007, "earlier", nullptr);
  GetParam().run(client);
  EXPECT_THAT(record, ReportsIPError("earlier", 12007));
}

TEST_P(TitledFailure, WithoutAnErrorRecordChangesTheMessageAlone) {
  RecordingClient silent;
  GetParam().run(silent);
  EXPECT_STREQ(silent.m_szMessage, GetParam().title);
  EXPECT_EQ(silent.m_bInitialized, 1);
  EXPECT_EQ(silent.m_nRefCount, 1u);
}

const Titled kTitled[] = {
    {"AuthenticationFailed", "TQXIP::Authentication failed!", 1243,
     [](TQXIP& client) { client.OnAuthenticationFailed(); }},
    {"AuthenticationNeeded", "TQXIP::Authentication needed!", 1271,
     [](TQXIP& client) { client.OnAuthenticationNeeded(); }},
    {"Failure", "TQXIP::Failure!", 1398, [](TQXIP& client) { client.OnFailure(); }},
    {"FirewallOfKind1", "TQXIP::FTPSetFirewall failed!", 2466,
     [](TQXIP& client) { EXPECT_EQ(client.FTPSetFirewall(1, 1, 0), 0); }},
    {"FirewallOfKind2", "TQXIP::FTPSetFirewall failed!", 2466,
     [](TQXIP& client) { EXPECT_EQ(client.FTPSetFirewall(2, 0, 5), 0); }},
    {"FirewallOfKind3", "TQXIP::FTPSetFirewall failed!", 2466,
     [](TQXIP& client) { EXPECT_EQ(client.FTPSetFirewall(3, 1, 0), 0); }},
    {"FirewallOfKind0", "TQXIP::FTPSetFirewall failed!", 2466,
     [](TQXIP& client) { EXPECT_EQ(client.FTPSetFirewall(0, 0, 0), 0); }},
    {"FirewallOfKind4", "TQXIP::FTPSetFirewall failed!", 2466,
     [](TQXIP& client) { EXPECT_EQ(client.FTPSetFirewall(4, 1, 0), 0); }},
    {"ProxyGiven", "TQXIP::FTPSetProxy failed!", 2531,
     [](TQXIP& client) { EXPECT_EQ(client.FTPSetProxy("proxy:8080", 1), 0); }},
    {"ProxyNull", "TQXIP::FTPSetProxy failed!", 2531,
     [](TQXIP& client) { EXPECT_EQ(client.FTPSetProxy(nullptr, 0), 0); }},
};

INSTANTIATE_TEST_SUITE_P(All, TitledFailure, testing::ValuesIn(kTitled),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
