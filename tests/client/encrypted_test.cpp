// SPDX-License-Identifier: MIT
// What a host gets of encrypted connections: web downloads, operations over private connections, and the
// texts of certificates that will not do.
#include <gmock/gmock.h>

#include "tests/client/HttpDownloadTest.h"
#include "tests/support/TestTrust.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class Encrypted : public HttpDownloadTest {
 protected:
  static json web(const json& tls, const json& answer = {{"body", {{"size", 50'000}}}}) {
    return {{"tls", tls}, {"answers", json::array({answer})}};
  }
  static json ftp(const json& tls) { return {{"tls", tls}, {"tree", {{"/a", "text"}}}}; }

  std::uint32_t downloadFrom(const std::string& host, const fixture::Server& server) {
    testing_support::trustTestAuthority();
    return client.HTTPDownloadFile(host.c_str(), "/a", server.port(), local.c_str(), nullptr, 0, 0);
  }
  QXBool connectBy(const std::string& host, const fixture::Server& server) {
    testing_support::trustTestAuthority();
    return client.FTPConnect(host.c_str(), "user", "secret", server.port(), 1, 0, nullptr);
  }
};

TEST_F(Encrypted, AWebDownloadComesWhole) {
  const fixture::ScriptedHttp server(web(json::object()));
  EXPECT_EQ(downloadFrom("https://127.0.0.1", server), 1u);
  EXPECT_EQ(std::filesystem::file_size(local), 50'000u);
}

TEST_F(Encrypted, AWebDownloadByAnotherNameShowsWhatTheCertificateSays) {
  const fixture::ScriptedHttp server(web({{"certificate", "wrong-name"}}));
  const auto boxes = boxesOf([&] { EXPECT_EQ(downloadFrom("https://127.0.0.1", server), 0u); });
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_THAT(boxes[0].text, HasSubstr("SHA-256"));
  EXPECT_FALSE(exists());
  EXPECT_EQ(downloadFrom("https://127.0.0.1;verify=no", server), 1u);
}

TEST_F(Encrypted, AWebDownloadThatIsCutIsNoSuccess) {
  const fixture::ScriptedHttp server(
      web(json::object(), {{"body", {{"size", 50'000}}}, {"cut_after", 20'000}}));
  boxesOf([&] { EXPECT_EQ(downloadFrom("https://127.0.0.1", server), 0u); });
}

TEST_F(Encrypted, AWholeWebDownloadWithoutTheLastWordIsWhole) {
  const fixture::ScriptedHttp server(
      web(json::object(), {{"body", {{"size", 50'000}}}, {"unsaid", true}, {"end", "close"}}));
  EXPECT_EQ(downloadFrom("https://127.0.0.1", server), 1u);
  EXPECT_EQ(std::filesystem::file_size(local), 50'000u);
}

// Nobody knows whether it is whole.
TEST_F(Encrypted, AWebDownloadOfUnknownSizeWithoutTheLastWordIsNoSuccess) {
  json answer = {{"body", {{"size", 50'000}}}, {"framing", "close"}};
  EXPECT_EQ(downloadFrom("https://127.0.0.1", fixture::ScriptedHttp(web(json::object(), answer))), 1u);
  std::filesystem::remove(local);
  answer["unsaid"] = true;
  const fixture::ScriptedHttp server(web(json::object(), answer));
  const auto boxes = boxesOf([&] { EXPECT_EQ(downloadFrom("https://127.0.0.1", server), 0u); });
  EXPECT_EQ(boxes.size(), 1u);
}

TEST_F(Encrypted, ACancelLeavesAWebServerThatStallsInItsHandshake) {
  for (const char* newest : {"1.2", "1.3"}) {
    const json spoil = {{"stream", "control"}, {"flight", 1}, {"how", "stall"}, {"gate", "never"}};
    const fixture::ScriptedHttp server(web({{"newest", newest}, {"spoil", spoil}}));
    int polls = 0;
    client.poll = [&](auto...) -> QXBool { return ++polls == 3; };
    EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(downloadFrom("https://127.0.0.1", server), 0u); }).empty());
    EXPECT_EQ(polls, 3) << newest;
  }
}

TEST_F(Encrypted, ALoginAtAnExpiredCertificateTellsTheHost) {
  const fixture::ScriptedFtp server(ftp({{"certificate", "expired"}}));
  EXPECT_EQ(connectBy("ftpes://127.0.0.1", server), 0);
  EXPECT_EQ(record.nError, 12037u);
  EXPECT_THAT(std::string(record.szText), AllOf(HasSubstr("expired"), HasSubstr("SHA-256")));
  EXPECT_THAT(std::string(record.szText), Not(HasSubstr("secret")));
  EXPECT_EQ(server.commandCount("USER"), 0);
}

TEST_F(Encrypted, OperationsOverPrivateConnectionsFollow) {
  const fixture::ScriptedFtp server(ftp(json::object()));
  testing_support::trustTestAuthority();
  client.FTPSetLogin("ftpes://127.0.0.1", "user", "secret", server.port(), 1);
  EXPECT_EQ(client.FTPDirExist("/", 0, 0, 0), 1);
  const json log = server.log();
  for (const auto& connection : log.at("connections")) {
    EXPECT_EQ(connection.at("plain_commands"), json::array({"AUTH TLS"}));
  }
}

TEST_F(Encrypted, ASchemeOfTheWebBeforeAnFtpHostAsksForNothing) {
  const fixture::ScriptedFtp server(ftp(json::object()));
  EXPECT_EQ(connectBy("HTTPS://127.0.0.1", server), 1);
  EXPECT_STREQ(client.m_RemoteSystem, "127.0.0.1");
  EXPECT_EQ(server.commandCount("AUTH"), 0);
}

}  // namespace
