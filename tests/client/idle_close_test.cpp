// SPDX-License-Identifier: MIT
// A client whose idle connection the server had closed answered from it for ever: files and folders were
// missing, a read found an empty file, a folder counted as removed that stayed.
#include "tests/client/IdleCloseTest.h"

namespace {

struct End {
  const char* name;
  const char* reply;
  const char* how;
};

constexpr End kEnds[] = {{"Fin", "", "fin"}, {"Reset", "", "reset"}, {"Farewell", "421 Timeout", "fin"}};

class IdleClose : public IdleCloseTest, public testing::WithParamInterface<std::tuple<End, bool>> {
 protected:
  // On each of the clients' connections, of which the server has as many.
  static void endAll(const fixture::ScriptedFtp& server) {
    const End& end = std::get<0>(GetParam());
    server.disconnect(end.reply, end.how);
    server.waitUntilAllClosed();
  }
  static std::string script() {
    const bool withFacts = std::get<1>(GetParam());
    return R"({"tree": )" + treeAt("/pub") +
           (withFacts ? std::string() : R"(, "features": ["size", "mdtm", "epsv"])") + "}";
  }
};

TEST_P(IdleClose, IsInvisibleToEveryOperation) {
  const fixture::ScriptedFtp server(script());
  const auto clients = connectAll(server, "user", "secret");
  endAll(server);
  expectAllWork(clients, "/pub");
  EXPECT_FALSE(server.exists("/pub/gone"));
  EXPECT_TRUE(server.exists("/pub/new"));
}

TEST_P(IdleClose, TakesNeitherFindersNorTheStateFromTheClient) {
  const fixture::ScriptedFtp server(script());
  ASSERT_EQ(connectTo(server), 1);
  client.forget();
  CFtpFileFind* const finder = client.m_pFTPDirFind;
  for (int round = 0; round < 3; ++round) {
    endAll(server);
    EXPECT_EQ(client.FTPDirExist("/pub/d", 0, 0, 0), 1);
  }
  EXPECT_EQ(client.m_pFTPDirFind, finder);
  EXPECT_EQ(client.m_bConnected, 1);
  EXPECT_EQ(client.count("OnConnect") + client.count("OnDisconnect"), 0u);
  EXPECT_EQ(server.connections().size(), 1u + 3u);
}

INSTANTIATE_TEST_SUITE_P(Ends, IdleClose, testing::Combine(testing::ValuesIn(kEnds), testing::Bool()),
                         [](const auto& instance) {
                           return std::get<0>(instance.param).name +
                                  std::string(std::get<1>(instance.param) ? "Mlst" : "List");
                         });

using IdleClient = ServerTest;

// Logging in again would need what the client was to forget.
TEST_F(IdleClient, ThatHasDisconnectedLogsInNoMore) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/": {}}})");
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(client.FTPDisconnect(), 1);
  server.disconnect();
  server.waitUntilAllClosed();
  EXPECT_EQ(client.FTPDirExist("/d", 2, 0, 0), 0);
  EXPECT_EQ(record.nError, 12030u);
  EXPECT_EQ(server.connections().size(), 1u);
}

TEST_F(IdleClient, ThatCannotLogInAnyMoreHearsWhy) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/": {}}})");
  ASSERT_EQ(connectTo(server), 1);
  server.reconfigure(R"({"password": "another"})");
  server.disconnect();
  server.waitUntilAllClosed();
  EXPECT_EQ(client.FTPDirExist("/d", 0, 0, 0), 0);
  EXPECT_EQ(client.count("OnIPError 12014"), 1u);
  EXPECT_EQ(record.nError, 12014u);
}

}  // namespace
