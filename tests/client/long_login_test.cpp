// SPDX-License-Identifier: MIT
// A login whose texts are longer than the fields of the interface: a transfer endpoint of a cloud has a name
// of 59 characters, which was cut away altogether (87).
#include <cstring>

#include "framework/internet/net/NameLookup.h"
#include "framework/platform/resolver.h"
#include "tests/client/ContentTest.h"
#include "tests/client/OperationTour.h"

namespace {

const std::string kHost = "s-0123456789abcdef0.server.transfer.eu-central-1.cloud.test";
const std::string kUser(200, 'u');
const std::string kPassword(1000, 'p');

std::string script() {
  return R"({"user": ")" + kUser + R"(", "password": ")" + kPassword +
         R"(", "tree": {"/a": "12", "/pub/": {}}})";
}

class LongLogin : public ContentTest {
 protected:
  // The long name alone leads to this machine.
  LongLogin() {
    internet::setResolverForTesting([](const std::string& host, std::uint16_t port) {
      return host == kHost ? platform::numericAddresses("127.0.0.1", port)
                           : std::vector<platform::SocketAddress>{};
    });
  }
  ~LongLogin() override { internet::setResolverForTesting(nullptr); }

  QXBool connect() {
    return client.FTPConnect(kHost.c_str(), kUser.c_str(), kPassword.c_str(), server.port(), 1, 0, nullptr);
  }
  void setLogin() { client.FTPSetLogin(kHost.c_str(), kUser.c_str(), kPassword.c_str(), server.port(), 1); }

  const fixture::ScriptedFtp server{script()};
};

TEST_F(LongLogin, EveryOperationWorksWithIt) {
  ASSERT_EQ(kHost.size(), 59u);
  setLogin();
  operation_tour::run(client, {"/pub", folder.path().string()});
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_F(LongLogin, AnIdleConnectionLogsInAgainWithIt) {
  EXPECT_EQ(connect(), 1);
  server.disconnect();
  server.waitUntilAllClosed();
  EXPECT_EQ(client.FTPDirExist("/pub", 0, 0, 0), 1);
  EXPECT_EQ(server.connections().size(), 2u);
}

TEST_F(LongLogin, WhatAHostWritesIntoAFieldCounts) {
  setLogin();
  std::memcpy(client.m_UserName, "bob", sizeof "bob");
  EXPECT_EQ(client.FTPFileSize("/a", 0, 0, 0), 0u);
  EXPECT_EQ(record.nError, 12014u);
  EXPECT_EQ(server.commands().at(0), "USER bob");
}

TEST_F(LongLogin, AHostThatWritesTheServersFieldGoesThere) {
  setLogin();
  std::memcpy(client.m_RemoteSystem, "127.0.0.1", sizeof "127.0.0.1");
  EXPECT_EQ(client.FTPFileSize("/a", 0, 0, 0), 2u);
}

TEST_F(LongLogin, ADisconnectForgetsIt) {
  EXPECT_EQ(connect(), 1);
  EXPECT_EQ(client.FTPDisconnect(), 1);
  EXPECT_STREQ(client.Login().host, "");
  EXPECT_STREQ(client.Login().user, "");
  EXPECT_STREQ(client.Login().password, "");
}

}  // namespace
