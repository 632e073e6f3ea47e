// SPDX-License-Identifier: MIT
// Login texts that are too long. What is left of such a login used to go to the server: a client whose user
// name was too long logged in as "anonymous", with the password of another.
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "tests/client/ContentTest.h"

namespace {

const std::string kLongUser(256, 'u');

class LoginLimits : public ContentTest {
 protected:
  struct Operation {
    const char* name;
    std::function<bool()> succeeds;
  };

  // One operation of each way to a server: the object's own connection, a worker's, the caller's own.
  [[nodiscard]] std::vector<Operation> operations() {
    return {{"FTPDirExist", [this] { return client.FTPDirExist("/pub", 1, 0, 0) != 0; }},
            {"FTPFileSize", [this] { return client.FTPFileSize("/a", 1, 0, 0) != 0; }},
            {"FTPGetDirectory",
             [this] { return client.FTPGetDirectory("/pub", nullptr, &count, "*.*", 1) != 0; }},
            {"FTPDownloadFile", [this] { return client.FTPDownloadFile("/a", local.c_str(), 1) != 0; }},
            {"FTPUploadFile", [this] { return client.FTPUploadFile("/a", given.c_str(), 1) != 0; }},
            {"FTPReadFile", [this] { return client.FTPReadFile("/a", &block, &count, 0, 1, 0, 0) != 0; }},
            {"FTPWriteFile", [this] { return client.FTPWriteFile("/a", "x", 1, 0, 0, 1, 0, 0) != 0; }},
            {"FTPCpyFile",
             [this] { return client.FTPCpyFile("/a", localName(local).c_str(), nullptr, 1, 0, 0) != 0; }},
            {"FTPRmvFile", [this] { return client.FTPRmvFile("/a", 0, 1, 0, 0) != 0; }},
            {"FTPRmvDir", [this] { return client.FTPRmvDir("/pub", 1, 0, 0) != 0; }},
            {"FTPCreateDir", [this] { return client.FTPCreateDir("/new", 1, 0, 0) != 0; }},
            {"FTPCreateNewDir", [this] { return client.FTPCreateNewDir("/pub", created, "New", 1) != 0; }},
            {"FTPRenameFile", [this] { return client.FTPRenameFile("/a", "/b", 1) != 0; }}};
  }

  // Every operation fails with 87, and nothing is sent.
  void expectNoneTo(const fixture::ScriptedFtp& server) {
    std::ofstream(given, std::ios::binary) << "content";
    for (const Operation& operation : operations()) {
      record = {};
      EXPECT_FALSE(operation.succeeds()) << operation.name;
      EXPECT_THAT(record, ShowsError(87)) << operation.name;
    }
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(server.connections().size(), 0u);
  }

  const std::string given = folder.file("given");
  std::uint32_t count = 0;
  void* block = nullptr;
  char created[256] = "";
};

TEST_F(LoginLimits, NoOperationUsesAUserThatDidNotFit) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(client.FTPSetLogin("127.0.0.1", kLongUser.c_str(), "secret", server.port(), 1), 1);
  expectNoneTo(server);
}

TEST_F(LoginLimits, NoOperationUsesAPasswordThatDidNotFit) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(client.FTPSetLogin("127.0.0.1", "user", std::string(1024, 'p').c_str(), server.port(), 1), 1);
  expectNoneTo(server);
}

TEST_F(LoginLimits, NoOperationFollowsAConnectWhoseUserDidNotFit) {
  const fixture::ScriptedFtp server;
  EXPECT_EQ(connectTo(server, kLongUser.c_str()), 0);
  EXPECT_THAT(record, ShowsError(87));
  expectNoneTo(server);
}

TEST_F(LoginLimits, WhatIsKeptByANullStaysRefused) {
  const fixture::ScriptedFtp server;
  client.FTPSetLogin("127.0.0.1", kLongUser.c_str(), "secret", server.port(), 1);
  client.FTPSetLogin("127.0.0.1", nullptr, "another", server.port(), 1);
  expectNoneTo(server);
}

TEST_F(LoginLimits, ALoginThatFitsMendsIt) {
  const fixture::ScriptedFtp server(R"({"user": "bob", "password": "secret", "tree": {"/a": "12"}})");
  client.FTPSetLogin("127.0.0.1", kLongUser.c_str(), "secret", server.port(), 1);
  client.FTPSetLogin("127.0.0.1", "bob", nullptr, server.port(), 1);
  EXPECT_EQ(client.FTPFileSize("/a", 0, 0, 0), 2u);
}

TEST_F(LoginLimits, AnEmptyUserThatIsGivenIsAnonymousAgain) {
  const fixture::ScriptedFtp server(R"({"user": "anonymous", "tree": {"/a": "12"}})");
  client.FTPSetLogin("127.0.0.1", kLongUser.c_str(), "secret", server.port(), 1);
  client.FTPSetLogin("127.0.0.1", "", nullptr, server.port(), 1);
  EXPECT_EQ(client.FTPFileSize("/a", 0, 0, 0), 2u);
}

TEST_F(LoginLimits, AHostThatWritesTheFieldItselfMendsIt) {
  const fixture::ScriptedFtp server(R"({"user": "bob", "tree": {"/a": "12"}})");
  client.FTPSetLogin("127.0.0.1", kLongUser.c_str(), "secret", server.port(), 1);
  std::memcpy(client.m_UserName, "bob", sizeof "bob");
  EXPECT_EQ(client.FTPFileSize("/a", 0, 0, 0), 2u);
}

TEST_F(LoginLimits, ADisconnectForgetsItWithTheLogin) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "12"}})");
  client.FTPSetLogin("127.0.0.1", kLongUser.c_str(), "secret", server.port(), 1);
  client.m_bConnected = 1;
  EXPECT_EQ(client.FTPDisconnect(), 1);
  client.FTPSetLogin("127.0.0.1", nullptr, nullptr, server.port(), 1);
  EXPECT_EQ(client.FTPFileSize("/a", 0, 0, 0), 2u);
}

}  // namespace
