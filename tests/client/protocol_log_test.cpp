// SPDX-License-Identifier: MIT
// The protocol as the host's OnStatus gets it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/client/HttpDownloadTest.h"
#include "tests/client/LoggingClient.h"
#include "tests/client/ServerTest.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/TestTrust.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using namespace std::string_view_literals;

class ProtocolLog : public ServerTest {
 protected:
  LoggingClient host;

  bool connect(const fixture::Server& server, const char* password = "secret") {
    return host.FTPConnect(server.host().c_str(), "user", password, server.port(), 1, 0, nullptr) != 0;
  }
};

TEST_F(ProtocolLog, TellsALoginLineByLine) {
  const fixture::ScriptedFtp server(R"({"welcome": "220 Hello"})"sv);
  ASSERT_TRUE(connect(server));
  const std::string address = "* connected to 127.0.0.1:" + std::to_string(server.port());
  const std::vector<std::string> lines = host.takeLines();
  ASSERT_GE(lines.size(), 6u);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 6),
              ElementsAre(address, "< 220 Hello", "> USER user", StartsWith("< 331"), "> PASS ****",
                          StartsWith("< 230")));
}

TEST_F(ProtocolLog, TellsTheLinesOfPrivateConnections) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "text"}})"sv);
  const testing_support::ScratchFolder folder;
  host.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
  EXPECT_EQ(host.FTPDownloadFile("/a", testing_support::localName(folder.file("a")).c_str(), 0), 1);
  const std::vector<std::string> lines = host.takeLines();
  EXPECT_THAT(lines, AllOf(Contains("> RETR /a"), Contains(StartsWith("< 226")), Contains("> QUIT")));
  for (const std::string& line : server.commands()) {
    EXPECT_THAT(lines, Contains("> " + (line.starts_with("PASS") ? "PASS ****" : line)));
  }
}

TEST_F(ProtocolLog, ARefusedLoginIsToldToItsEnd) {
  const fixture::ScriptedFtp server(R"({"password": "another"})"sv);
  EXPECT_FALSE(connect(server));
  EXPECT_THAT(host.takeLines(), Contains(StartsWith("< 530")));
}

TEST_F(ProtocolLog, ShowsNoPasswordThatTheServerEchoes) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "PASS", "do": [{"reply": ["230-You said s3cret, s3cret!", "230 s3cret"]}]}]})"sv);
  ASSERT_TRUE(connect(server, "s3cret"));
  const std::vector<std::string> lines = host.takeLines();
  EXPECT_THAT(lines, Each(Not(HasSubstr("s3cret"))));
  EXPECT_THAT(lines, AllOf(Contains("< 230-You said ****, ****!"), Contains("< 230 ****")));
}

TEST_F(ProtocolLog, ControlBytesOfTheServerAreShownAsQuestionMarks) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "CONNECT", "do": [{"raw": "220 a\u001b[2Jb\r\n"}]}]})"sv);
  ASSERT_TRUE(connect(server));
  EXPECT_THAT(host.takeLines(), Contains("< 220 a?[2Jb"));
}

TEST_F(ProtocolLog, TellsAnHttpRequestAndItsAnswer) {
  const fixture::ScriptedHttp web(R"({"answers": [{"body": {"size": 10}}]})"sv);
  const testing_support::ScratchFolder folder;
  EXPECT_EQ(host.HTTPDownloadFile(web.host().c_str(), "/file", web.port(),
                                  testing_support::localName(folder.file("file")).c_str(), nullptr, 0, 0),
            1u);
  EXPECT_THAT(host.takeLines(), ElementsAre(StartsWith("* connected to "), "> GET /file HTTP/1.1",
                                            StartsWith("< HTTP/1.1 200")));
}

TEST_F(ProtocolLog, TellsTheEncryptionOfAWebDownload) {
  const fixture::ScriptedHttp web(R"({"tls": {}, "answers": [{"body": {"size": 10}}]})"sv);
  const testing_support::ScratchFolder folder;
  testing_support::trustTestAuthority();
  EXPECT_EQ(host.HTTPDownloadFile("https://127.0.0.1", "/file", web.port(),
                                  testing_support::localName(folder.file("file")).c_str(), nullptr, 0, 0),
            1u);
  EXPECT_THAT(host.takeLines(), ElementsAre(StartsWith("* connected to "), StartsWith("* TLS 1."),
                                            "> GET /file HTTP/1.1", StartsWith("< HTTP/1.1 200")));
}

}  // namespace
