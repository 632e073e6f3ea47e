// SPDX-License-Identifier: MIT
// FTPConnect and FTPDisconnect at a server.
#include <memory>
#include <utility>

#include "Src/TInternetSession.h"
#include "framework/internet/FtpFileFind.h"
#include "framework/internet/net/NameLookup.h"
#include "tests/client/ServerTest.h"
#include "tests/support/ProcessCounters.h"

namespace {

class Connect : public ServerTest {
 protected:
  [[nodiscard]] std::vector<CFtpFileFind*> finders() const {
    return {client.m_pFTPFileFind, client.m_pFTPDirFind, client.m_pFTPGetDir, client.m_pFTPFileSize};
  }
  void expectNoConnection() const {
    EXPECT_EQ(client.m_pFtpConnection, nullptr);
    EXPECT_EQ(client.m_bConnected, 0);
    EXPECT_EQ(finders(), std::vector<CFtpFileFind*>(4, nullptr));
  }
};

TEST_F(Connect, LogsInWithTheGivenDataAndStoresIt) {
  const fixture::ScriptedFtp server(R"({"user": "bob", "password": "s3cret"})");
  EXPECT_EQ(client.FTPConnect("127.0.0.1", "bob", "s3cret", server.port(), 1, 0, nullptr), 1);
  EXPECT_NE(client.m_pFtpConnection, nullptr);
  EXPECT_EQ(client.m_bConnected, 1);
  EXPECT_STREQ(client.m_RemoteSystem, "127.0.0.1");
  EXPECT_STREQ(client.m_UserName, "bob");
  EXPECT_STREQ(client.m_Password, "s3cret");
  EXPECT_EQ(client.m_nPort, server.port());
  EXPECT_EQ(client.m_bPassive, 1);
  EXPECT_EQ(server.commands().at(0), "USER bob");
  EXPECT_EQ(server.commands().at(1), "PASS s3cret");
}

TEST_F(Connect, ASuccessLeavesOkInTheMessageAndNoReport) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPConnect - OUT: OK!");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Connect, MakesFourFinders) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  for (const CFtpFileFind* finder : finders()) EXPECT_NE(finder, nullptr);
  EXPECT_NE(client.m_pFTPFileFind, client.m_pFTPDirFind);
}

TEST_F(Connect, StripsTheSchemeOfTheHost) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(client.FTPConnect("FTP://127.0.0.1", "u", "p", server.port(), 1, 0, nullptr), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "127.0.0.1");
}

TEST_F(Connect, NullUserAndPasswordMeanTheStoredOnes) {
  const fixture::ScriptedFtp server;
  client.FTPSetLogin("x", "bob", "s3cret", 21, 0);
  EXPECT_EQ(client.FTPConnect("127.0.0.1", nullptr, nullptr, server.port(), 1, 0, nullptr), 1);
  EXPECT_EQ(server.commands().at(0), "USER bob");
  EXPECT_EQ(server.commands().at(1), "PASS s3cret");
}

TEST_F(Connect, ThePortIsTakenModulo65536) {
  const fixture::ScriptedFtp server;
  const std::uint32_t port = 0x50000u + server.port();
  EXPECT_EQ(client.FTPConnect("127.0.0.1", "u", "p", port, 1, 0, nullptr), 1);
  EXPECT_EQ(client.m_nPort, port);
}

TEST_F(Connect, TheHooksFollowTheNotifications) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  const Names calls = client.calls();
  ASSERT_GE(calls.size(), 3u);
  EXPECT_EQ(calls[0], "OnSuccess");      // the name is resolved
  EXPECT_EQ(calls[1], "OnConnect");      // the connection comes up
  EXPECT_EQ(calls.back(), "OnConnect");  // and the operation's own
  EXPECT_EQ(client.count("OnConnect"), 2u);
  EXPECT_EQ(client.count("OnDisconnect"), 0u);
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_F(Connect, TheEntryLineNamesTheHostAsItWasGiven) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(client.FTPConnect("ftp://127.0.0.1", "u", "p", server.port(), 1, 0, nullptr), 1);
  EXPECT_EQ(client.messages().at(0), "TQXIP::FTPConnect - IN: 'ftp://127.0.0.1'");
}

TEST_F(Connect, WithoutAnErrorRecordTheOperationsOwnHookIsTheOnlyOne) {
  const fixture::ScriptedFtp server;
  RecordingClient silent;
  EXPECT_EQ(silent.FTPConnect("127.0.0.1", "u", "p", server.port(), 1, 0, nullptr), 1);
  EXPECT_EQ(silent.calls(), Names{"OnConnect"});
  EXPECT_EQ(silent.m_bConnected, 1);
}

TEST_F(Connect, ARefusedConnectionIsReportedThroughOnIPErrorWithoutACounter) {
  const fixture::RefusedPort nobody;
  EXPECT_EQ(connectTo(nobody), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 1u);
  EXPECT_EQ(client.count("OnIPError"), 1u);
  EXPECT_EQ(client.calls().back().find(" retries "), std::string::npos);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPConnect - OUT: Failed!");
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[12029 QXIP 1187]"));
  EXPECT_EQ(client.m_pFtpConnection, nullptr);
}

TEST_F(Connect, AFailureKeepsTheLoginData) {
  const fixture::RefusedPort nobody;
  EXPECT_EQ(connectTo(nobody), 0);
  EXPECT_STREQ(client.m_RemoteSystem, "127.0.0.1");
  EXPECT_STREQ(client.m_UserName, "user");
  EXPECT_STREQ(client.m_Password, "secret");
  EXPECT_EQ(client.m_nPort, nobody.port());
}

TEST_F(Connect, AWrongPasswordIs12014) {
  const fixture::ScriptedFtp server(R"({"password": "right"})");
  EXPECT_EQ(connectTo(server), 0);
  EXPECT_EQ(record.nError, 12014u);
  expectNoConnection();
}

TEST_F(Connect, AnyOtherRefusalAtLoginIs12015) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "PASS", "do": [{"reply": "532 No account"}]}]})");
  EXPECT_EQ(connectTo(server), 0);
  EXPECT_EQ(record.nError, 12015u);
  expectNoConnection();
}

TEST_F(Connect, ANameThatDoesNotResolveIs12007) {
  internet::setResolverForTesting(
      [](const std::string&, std::uint16_t) { return std::vector<platform::SocketAddress>{}; });
  EXPECT_EQ(client.FTPConnect("nowhere.invalid", "u", "p", 21, 1, 0, nullptr), 0);
  internet::setResolverForTesting(nullptr);
  EXPECT_EQ(record.nError, 12007u);
}

TEST_F(Connect, AServerThatSaysNothingIs12002) {
  const fixture::Blackhole silent;
  shortenTimeouts();
  EXPECT_EQ(connectTo(silent), 0);
  EXPECT_EQ(record.nError, 12002u);
  expectNoConnection();
}

TEST_F(Connect, AServerThatHangsUpIs12030) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "USER", "do": ["close"]}]})");
  EXPECT_EQ(connectTo(server), 0);
  EXPECT_EQ(record.nError, 12030u);
  expectNoConnection();
}

TEST_F(Connect, AFailureReplacesAnEarlierReport) {
  const fixture::RefusedPort nobody;
  client.FTPSetProxy("x", 0);
  EXPECT_EQ(connectTo(nobody), 0);
  EXPECT_EQ(record.nError, 12029u);
}

TEST_F(Connect, AnotherSessionServesOneCallAndIsNotStored) {
  const fixture::ScriptedFtp server;
  TInternetSession* const ownSession = client.m_pInternetSession;
  static std::vector<std::uint32_t> statuses;
  statuses.clear();
  const auto note = [](const SessionOwner&, std::uintptr_t, std::uint32_t status, void*, std::uint32_t) {
    statuses.push_back(status);
  };
  TInternetSession session(&record, &client, note);
  session.EnableStatusCallback();
  EXPECT_EQ(client.FTPConnect("127.0.0.1", "u", "p", server.port(), 1, 0, &session), 1);
  EXPECT_EQ(client.m_pInternetSession, ownSession);
  EXPECT_EQ(client.calls(), Names{"OnConnect"});
  ASSERT_GE(statuses.size(), 4u);
  EXPECT_EQ(std::vector<std::uint32_t>(statuses.begin(), statuses.begin() + 4),
            (std::vector<std::uint32_t>{10, 11, 20, 21}));
}

// It used to make the session and fail all the same.
TEST_F(Connect, GoesOnWithTheSessionThatItMakesWhereNoneIsLeft) {
  const fixture::ScriptedFtp server(R"({"user": "bob", "password": "s3cret"})");
  client.FTPSetLogin("127.0.0.1", "bob", "s3cret", server.port(), 1);
  delete std::exchange(client.m_pInternetSession, nullptr);
  client.m_bInitialized = 0;
  EXPECT_EQ(client.FTPConnect("not.stored.invalid", "other", "other", 1, 0, 0, nullptr), 1);
  EXPECT_NE(client.m_pInternetSession, nullptr);
  EXPECT_EQ(client.m_bInitialized, 1);
  EXPECT_EQ(client.m_bConnected, 1);
  EXPECT_EQ(server.commands().at(0), "USER bob");
}

TEST_F(Connect, ASecondConnectClosesTheFirstConnectionBeforeItConnects) {
  const fixture::ScriptedFtp first;
  const fixture::ScriptedFtp second;
  EXPECT_EQ(connectTo(first), 1);
  client.forget();
  EXPECT_EQ(connectTo(second), 1);
  const Names calls = client.calls();
  ASSERT_GE(calls.size(), 4u);
  EXPECT_EQ(calls[0], "OnDisconnect");
  EXPECT_EQ(calls[1], "OnDisconnect");
  EXPECT_EQ(calls[2], "OnSuccess");
  EXPECT_EQ(calls[3], "OnConnect");
  first.waitUntilAllClosed();
  expectQuit(first, 1);
  EXPECT_EQ(client.m_bConnected, 1);
}

TEST_F(Connect, AHundredConnectsLeaveOneConnection) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  const int handles = testing_support::processCounters().handles;
  for (int i = 0; i < 100; ++i) ASSERT_EQ(connectTo(server), 1) << i;
  EXPECT_LE(testing_support::processCounters().handles, handles);
  server.waitFor(R"({"closed": 100, "open": 1})");
}

TEST_F(Connect, AFailedSecondConnectLeavesNone) {
  const fixture::ScriptedFtp server;
  const fixture::RefusedPort nobody;
  EXPECT_EQ(connectTo(server), 1);
  EXPECT_EQ(connectTo(nobody), 0);
  expectNoConnection();
  server.waitUntilAllClosed();
}

TEST_F(Connect, ASecondConnectWhoseLoginDoesNotFitLeavesNone) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  EXPECT_EQ(connectTo(server, std::string(256, 'u').c_str()), 0);
  expectNoConnection();
  server.waitUntilAllClosed();
  EXPECT_EQ(server.connections().size(), 1u);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[87 QXIP 2817]"));
}

TEST_F(Connect, ALoginThatDoesNotFitReachesNoServer) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server, std::string(256, 'u').c_str()), 0);
  EXPECT_EQ(connectTo(server, std::string(500, 'u').c_str()), 0);
  EXPECT_EQ(client.FTPConnect("127.0.0.1", "u", std::string(1024, 'p').c_str(), server.port(), 1, 0, nullptr),
            0);
  EXPECT_EQ(server.connections().size(), 0u);
}

TEST_F(Connect, ALoginWithALineEndReachesNoServer) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server, "u\r\nDELE x"), 0);
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_EQ(record.nError, 87u);
}

TEST_F(Connect, DisconnectForgetsTheLoginButKeepsTheConnection) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  client.forget();
  EXPECT_EQ(client.FTPDisconnect(), 1);
  EXPECT_EQ(client.calls(), (Names{"OnBeforeDisconnect", "OnDisconnect", "OnAfterDisconnect"}));
  EXPECT_STREQ(client.m_RemoteSystem, "");
  EXPECT_EQ(client.m_nPort, 21u);
  EXPECT_EQ(client.m_bPassive, 0);
  EXPECT_NE(client.m_pFtpConnection, nullptr);
  EXPECT_EQ(client.m_bConnected, 0);
  EXPECT_TRUE(server.connections().at(0).open);
}

TEST_F(Connect, ConnectAfterDisconnectWorks) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  EXPECT_EQ(client.FTPDisconnect(), 1);
  EXPECT_EQ(connectTo(server), 1);
  EXPECT_EQ(client.m_bConnected, 1);
  server.waitFor(R"({"connections": 2, "open": 1})");
}

TEST_F(Connect, TheConnectionGoesWithTheObject) {
  const fixture::ScriptedFtp server;
  auto* own = new TQXIP(&record);
  EXPECT_EQ(own->FTPConnect("127.0.0.1", "u", "p", server.port(), 1, 0, nullptr), 1);
  EXPECT_EQ(own->Release(), 0u);
  server.waitUntilAllClosed();
  expectQuit(server, 1);
}

TEST_F(Connect, GetFinderMakesANewOneForAnotherName) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  const std::unique_ptr<CFtpFileFind> own(client.GetFinder(0, "another"));
  const std::unique_ptr<CFtpFileFind> other(client.GetFinder(0, "another"));
  ASSERT_NE(own, nullptr);
  EXPECT_NE(own, other);
  for (const CFtpFileFind* finder : finders()) EXPECT_NE(own.get(), finder);
  EXPECT_EQ(client.GetFinder(0, nullptr), nullptr);
}

TEST_F(Connect, OnConnectRenewsTheFinders) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "1"}})");
  EXPECT_EQ(connectTo(server), 1);
  client.OnConnect();
  for (CFtpFileFind* finder : finders()) {
    ASSERT_NE(finder, nullptr);
    EXPECT_TRUE(finder->FindFile("/a"));
  }
}

TEST_F(Connect, KeepAliveReturnsWhenTheServerHangsUp) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server), 1);
  server.disconnect();
  client.forget();
  client.FTPKeepAlive();
  EXPECT_EQ(client.m_bConnected, 0);
  EXPECT_GE(client.count("OnDisconnect"), 1u);
}

TEST_F(Connect, KeepAliveReturnsWhenTheServerHangsUpThoughThereIsNoErrorRecord) {
  const fixture::ScriptedFtp server;
  RecordingClient silent;
  EXPECT_EQ(silent.FTPConnect("127.0.0.1", "u", "p", server.port(), 1, 0, nullptr), 1);
  server.disconnect();
  silent.FTPKeepAlive();
  EXPECT_EQ(silent.m_bConnected, 0);
}

}  // namespace
