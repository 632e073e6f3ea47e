// SPDX-License-Identifier: MIT
// Servers that want data connections to resume the session of the login, and give out none over TLS 1.3.
#include "tests/internet/FtpTlsTransferTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;

// Over TLS 1.3 such a server gives out no session at all, so no data connection can resume one.
json wantsSession(const char* reply, bool handshakeFirst = false) {
  return {{"tickets", 0}, {"reuse", reply}, {"handshake_first", handshakeFirst}};
}

class EachRefusal : public FtpTlsTransfer, public testing::WithParamInterface<std::tuple<const char*, bool>> {
 protected:
  const json tls = wantsSession(std::get<0>(GetParam()), std::get<1>(GetParam()));

  // The first attempt of `work` is refused over TLS 1.3, the next one is done over 1.2.
  template <class Work>
  void expectOnceMore(const char* verb, Work work) {
    const ScriptedFtp server(script(tls));
    work(*connectBy("ftpes://", server), server);
    EXPECT_EQ(server.connections().size(), 2u);
    const json data = dataOf(server);
    ASSERT_EQ(data.size(), 2u);
    EXPECT_EQ(data[0].at("tls"), "TLSv1.3");
    EXPECT_EQ(data[1].at("tls"), "TLSv1.2");
    EXPECT_EQ(data[1].at("resumed"), true);
    EXPECT_EQ(data[1].at("verb"), verb);
    expectNothingPlain(server);
  }
};

TEST_P(EachRefusal, ReadsOnceMoreOverTls12) {
  expectOnceMore("RETR", [](auto& connection, auto&) { expectReads(connection); });
}

TEST_P(EachRefusal, WritesOnceMoreOverTls12) {
  expectOnceMore("STOR", [](auto& connection, auto& server) { expectWrites(connection, server); });
}

TEST_P(EachRefusal, ListsOnceMoreOverTls12) {
  expectOnceMore("MLSD", [](auto& connection, auto&) { expectLists(connection); });
}

TEST_P(EachRefusal, IsRememberedForTheServer) {
  ScriptedFtp server(script(tls));
  expectReads(*connectBy("ftpes://", server));
  auto connection = connectBy("ftpes://", server);
  expectReads(*connection);
  expectWrites(*connection, server);
  EXPECT_EQ(server.connections().size(), 3u);
  EXPECT_EQ(dataOf(server).size(), 4u);
}

TEST_P(EachRefusal, KeepsTheDirectory) {
  ScriptedFtp server(script(tls));
  auto connection = connectBy("ftpes://", server);
  ASSERT_TRUE(connection->SetCurrentDirectory("/dir"));
  std::string content;
  EXPECT_EQ(reading(*connection, content, "file").error, 0u);
  EXPECT_EQ(content, "x");
}

INSTANTIATE_TEST_SUITE_P(Refusals, EachRefusal,
                         testing::Combine(testing::Values("522 Resume", "425 Cannot"), testing::Bool()));

TEST_F(FtpTlsTransfer, AServerThatTakesFreshSessionsIsAskedOnce) {
  ScriptedFtp server(script({{"tickets", 0}}));
  auto connection = connectBy("ftpes://", server);
  expectReads(*connection);
  expectWrites(*connection, server);
  EXPECT_EQ(server.connections().size(), 1u);
}

TEST_F(FtpTlsTransfer, TheProtocolTellsOfEachEncryption) {
  for (const std::string version : {"1.2", "1.3"}) {
    ScriptedFtp server(script({{"newest", version}}));
    TellingSession telling;
    const std::string host = hostText("ftpes://", server);
    const std::unique_ptr<CFtpConnection> connection(
        telling.GetFtpConnection(host.c_str(), "user", "secret", server.port(), true));
    expectSixTransfers(*connection, server);
    expectSix(telling.encryptions, version);
  }
}

}  // namespace
}  // namespace internet_tests
