// SPDX-License-Identifier: MIT
// The login data: host names in all their spellings, texts that are too long, and what FTPDisconnect forgets.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "Src/TInternetSession.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"

namespace {

constexpr int kConnectLine = 2817;
constexpr int kDisconnectLine = 2968;

class Login : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};

  std::string storedHost(const char* host) {
    std::memset(client.m_RemoteSystem, 'x', sizeof client.m_RemoteSystem - 1);
    client.m_RemoteSystem[sizeof client.m_RemoteSystem - 1] = '\0';
    EXPECT_EQ(client.FTPSetLogin(host, "u", "p", 21, 0), 1);
    return client.m_RemoteSystem;
  }
};

TEST_F(Login, StoresAllFiveValues) {
  EXPECT_EQ(client.FTPSetLogin("host", "user", "secret", 2121, 1), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "host");
  EXPECT_STREQ(client.m_UserName, "user");
  EXPECT_STREQ(client.m_Password, "secret");
  EXPECT_EQ(client.m_nPort, 2121u);
  EXPECT_EQ(client.m_bPassive, 1);
}

TEST_F(Login, DoesNotConnect) {
  EXPECT_EQ(client.FTPSetLogin("host", "user", "secret", 21, 0), 1);
  EXPECT_EQ(client.m_pFtpConnection, nullptr);
  EXPECT_EQ(client.m_bConnected, 0);
  EXPECT_TRUE(client.calls().empty());
}

TEST_F(Login, NullUserAndPasswordKeepWhatIsStored) {
  client.FTPSetLogin("host", "user", "secret", 21, 0);
  EXPECT_EQ(client.FTPSetLogin("other", nullptr, nullptr, 22, 1), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "other");
  EXPECT_STREQ(client.m_UserName, "user");
  EXPECT_STREQ(client.m_Password, "secret");
  EXPECT_EQ(client.m_nPort, 22u);
}

TEST_F(Login, ANullHostKeepsTheStoredOne) {
  client.FTPSetLogin("host", "user", "secret", 21, 0);
  EXPECT_EQ(client.FTPSetLogin(nullptr, "second", nullptr, 21, 0), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "host");
  EXPECT_STREQ(client.m_UserName, "second");
}

TEST_F(Login, TheObjectsOwnFieldsMayBeGivenAgain) {
  client.FTPSetLogin("host", "user", "secret", 2121, 1);
  EXPECT_EQ(client.FTPSetLogin(client.m_RemoteSystem, client.m_UserName, client.m_Password, 22, 0), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "host");
  EXPECT_STREQ(client.m_UserName, "user");
  EXPECT_STREQ(client.m_Password, "secret");
}

TEST_F(Login, EmptyTextsReplaceWhatIsStored) {
  client.FTPSetLogin("host", "user", "secret", 21, 0);
  EXPECT_EQ(client.FTPSetLogin("", "", "", 21, 0), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "");
  EXPECT_STREQ(client.m_UserName, "");
  EXPECT_STREQ(client.m_Password, "");
}

TEST_F(Login, WorksOnAClientThatIsNotInitialised) {
  client.m_bInitialized = 0;
  EXPECT_EQ(client.FTPSetLogin("host", "user", "secret", 21, 0), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "host");
  client.m_bInitialized = 1;
}

TEST_F(Login, ABareHostIsStoredUnchanged) { EXPECT_EQ(storedHost("Ftp.Example.org"), "Ftp.Example.org"); }

TEST_F(Login, TheFtpSchemeIsRemovedInAnyCase) {
  EXPECT_EQ(storedHost("FTP://host"), "host");
  EXPECT_EQ(storedHost("ftp://host"), "host");
  EXPECT_EQ(storedHost("fTp://Host"), "Host");
}

TEST_F(Login, TheHttpSchemesAreRemovedInAnyCase) {
  EXPECT_EQ(storedHost("HTTP://host"), "host");
  EXPECT_EQ(storedHost("http://host"), "host");
  EXPECT_EQ(storedHost("HTTPS://host"), "host");
  EXPECT_EQ(storedHost("Https://host"), "host");
}

TEST_F(Login, OnlyTheFirstOfTwoSchemesIsRemoved) {
  EXPECT_EQ(storedHost("ftp://http://host"), "http://host");
  EXPECT_EQ(storedHost("http://ftp://host"), "ftp://host");
  EXPECT_EQ(storedHost("https://https://host"), "https://host");
}

TEST_F(Login, AnotherSchemeStays) {
  EXPECT_EQ(storedHost("sftp://host"), "sftp://host");
  EXPECT_EQ(storedHost("ftp:/host"), "ftp:/host");
}

TEST_F(Login, TwoLeadingBackslashesAreRemoved) { EXPECT_EQ(storedHost("\\\\host"), "host"); }

TEST_F(Login, TwoBackslashesBehindASchemeAreRemovedToo) { EXPECT_EQ(storedHost("ftp://\\\\host"), "host"); }

TEST_F(Login, ASchemeBehindBackslashesStays) { EXPECT_EQ(storedHost("\\\\ftp://host"), "ftp://host"); }

TEST_F(Login, ASingleLeadingBackslashTakesTheNextCharacterWithIt) { EXPECT_EQ(storedHost("\\host"), "ost"); }

TEST_F(Login, NothingRemainsOfALoneBackslashASchemeOrAnEmptyText) {
  EXPECT_EQ(storedHost("\\"), "");
  EXPECT_EQ(storedHost("\\\\"), "");
  EXPECT_EQ(storedHost("FTP://"), "");
  EXPECT_EQ(storedHost(""), "");
}

TEST_F(Login, WhatFitsIsStoredBesideATextThatDoesNot) {
  const std::string huge(5000, 'x');
  EXPECT_EQ(client.FTPSetLogin(huge.c_str(), "u", "p", 21, 0), 1);
  EXPECT_STREQ(client.m_UserName, "u");
  EXPECT_STREQ(client.m_Password, "p");
  EXPECT_EQ(client.FTPSetLogin("h", huge.c_str(), "q", 21, 0), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "h");
  EXPECT_STREQ(client.m_Password, "q");
}

TEST_F(Login, TextsThatDoNotFitLeaveTheirNeighboursAlone) {
  const std::string huge(5000, 'x');
  client.m_nPort = 7;
  EXPECT_EQ(client.FTPSetLogin(huge.c_str(), huge.c_str(), huge.c_str(), 2121, 1), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "");
  EXPECT_STREQ(client.m_UserName, "");
  EXPECT_STREQ(client.m_Password, "");
  EXPECT_EQ(client.m_nPort, 2121u);
  EXPECT_EQ(client.m_bPassive, 1);
}

// One text too long at a time: the call must fail and log in nowhere.
struct TooLong {
  const char* name;
  std::size_t host, user, password;  // characters
};

class LoginThatDoesNotFit : public Login, public testing::WithParamInterface<TooLong> {};

TEST_P(LoginThatDoesNotFit, MakesConnectFailWithoutAConnection) {
  const std::string host(GetParam().host, 'h');
  const std::string user(GetParam().user, 'u');
  const std::string password(GetParam().password, 'p');
  EXPECT_EQ(client.FTPConnect(host.c_str(), user.c_str(), password.c_str(), 2121, 1, 0, nullptr), 0);
  EXPECT_EQ(client.m_pFtpConnection, nullptr);
  EXPECT_TRUE(client.calls().empty());
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPConnect - OUT: Failed!");
  EXPECT_THAT(record,
              ReportsLastError("TQXIP::FTPConnect to '" + host + ":2121' failed!", 87u, kConnectLine));
}

INSTANTIATE_TEST_SUITE_P(Texts, LoginThatDoesNotFit,
                         testing::Values(TooLong{"HostOf256", 256, 1, 1}, TooLong{"UserOf256", 1, 256, 1},
                                         TooLong{"PasswordOf1024", 1, 1, 1024}),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(Login, ConnectWithANullHostFailsAndKeepsTheLoginData) {
  client.FTPSetLogin("host", "user", "secret", 2121, 1);
  EXPECT_EQ(client.FTPConnect(nullptr, "other", "other", 22, 0, 0, nullptr), 0);
  EXPECT_STREQ(client.m_RemoteSystem, "host");
  EXPECT_STREQ(client.m_UserName, "user");
  EXPECT_EQ(client.m_nPort, 2121u);
  EXPECT_EQ(client.m_pFtpConnection, nullptr);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPConnect - OUT: Failed!");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPConnect to '(null):22' failed!", kConnectLine));
}

TEST_F(Login, ConnectOfAClientThatIsNotInitialisedFailsAndStoresNothing) {
  client.m_bInitialized = 0;
  EXPECT_EQ(client.FTPConnect("host", "user", "secret", 22, 0, 0, nullptr), 0);
  EXPECT_STREQ(client.m_RemoteSystem, "");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPConnect to 'host:22' failed!", kConnectLine));
  client.m_bInitialized = 1;
}

TEST_F(Login, ConnectWithoutAnErrorRecordFailsInTheMessageAlone) {
  RecordingClient silent;
  EXPECT_EQ(silent.FTPConnect(nullptr, "", "", 21, 0, 0, nullptr), 0);
  EXPECT_STREQ(silent.m_szMessage, "TQXIP::FTPConnect - OUT: Failed!");
}

TEST_F(Login, ConnectMakesASessionWhereNoneIsLeft) {
  delete std::exchange(client.m_pInternetSession, nullptr);
  client.m_bInitialized = 0;
  EXPECT_EQ(client.FTPConnect(nullptr, "", "", 21, 0, 0, nullptr), 0);  // there is no host
  EXPECT_NE(client.m_pInternetSession, nullptr);
  EXPECT_EQ(client.m_bInitialized, 1);
}

TEST_F(Login, DisconnectWhileNotConnectedKeepsTheLoginData) {
  client.FTPSetLogin("host", "user", "secret", 2121, 1);
  EXPECT_EQ(client.FTPDisconnect(), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "host");
  EXPECT_STREQ(client.m_UserName, "user");
  EXPECT_STREQ(client.m_Password, "secret");
  EXPECT_EQ(client.m_nPort, 2121u);
  EXPECT_EQ(client.m_bPassive, 1);
  EXPECT_EQ(client.calls(), (std::vector<std::string>{"OnBeforeDisconnect", "OnAfterDisconnect"}));
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Login, DisconnectWhileConnectedForgetsTheLoginDataBetweenItsHooks) {
  client.FTPSetLogin("host", "user", "secret", 2121, 1);
  client.m_bConnected = 1;
  EXPECT_EQ(client.FTPDisconnect(), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "");
  EXPECT_STREQ(client.m_UserName, "");
  EXPECT_STREQ(client.m_Password, "");
  EXPECT_EQ(client.m_nPort, 21u);
  EXPECT_EQ(client.m_bPassive, 0);
  EXPECT_EQ(client.m_bConnected, 0);
  EXPECT_EQ(client.calls(),
            (std::vector<std::string>{"OnBeforeDisconnect", "OnDisconnect", "OnAfterDisconnect"}));
}

TEST_F(Login, DisconnectOfAClientThatIsNotInitialisedFailsAndReports) {
  client.FTPSetLogin("host", "user", "secret", 2121, 1);
  client.m_bConnected = 1;
  client.m_bInitialized = 0;
  platform::setLastError(0);
  EXPECT_EQ(client.FTPDisconnect(), 0);
  EXPECT_STREQ(client.m_RemoteSystem, "host");
  EXPECT_TRUE(client.calls().empty());
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDisconnect failed!");
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPDisconnect failed!", 0u, kDisconnectLine));
  client.m_bInitialized = 1;
}

}  // namespace
