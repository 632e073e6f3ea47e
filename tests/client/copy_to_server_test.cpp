// SPDX-License-Identifier: MIT
// FTPCpyFile from the disk to the server: an upload within an operation that can be cancelled.
#include "tests/client/ContentTest.h"

namespace {

constexpr const char* kStalls =
    R"({"rules": [{"on": "STOR", "nth": 1, "do": [{"normal": {"final_gate": "never"}}]}]})";

class CopyToServer : public ContentTest {
 protected:
  const std::string source = localName(local);
  const std::string failedLine = "TQXIP::FTPCpyFile from '" + source + "' to '/b' failed!";

  void SetUp() override { write("mine"); }
  QXBool copy(std::uint32_t retries = 0, const std::string& to = "/b") {
    return client.FTPCpyFile(source.c_str(), to.c_str(), nullptr, retries, 0, 0);
  }
};

TEST_F(CopyToServer, ARefusedLoginIsTriedAsOftenAsTheRetriesSay) {
  expectRefusedLogins(failedLine, [&](std::uint32_t retries) { return copy(retries); });
}

TEST_F(CopyToServer, NobodyListens) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(copy(1), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 2u);
  EXPECT_EQ(record.nError, 12029u);
}

TEST_F(CopyToServer, ATransferThatBreaksOffIsTheRequiredSuccessForAFileWithContent) {
  // A refusal is final; a broken connection is followed by others, as the retries say.
  const std::pair<const char*, int> ends[] = {{R"({"reset_after": 1000})", 4},
                                              {R"({"close_after": 1000, "final": "426 Broken"})", 4},
                                              {R"({"final": "552 Full"})", 1}};
  for (const auto& [end, attempts] : ends) {
    const fixture::ScriptedFtp server(std::string(R"({"rules": [{"on": "STOR", "do": [{"normal": )") + end +
                                      "}]}]}");
    loginAt(server);
    testing_support::Pattern(6).writeFile(local, 1 << 20);
    EXPECT_EQ(copy(3), 1) << end;
    EXPECT_EQ(server.commandCount("STOR"), attempts) << end;
    EXPECT_EQ(client.count("OnAfterDisconnect"), 0u);
  }
}

TEST_F(CopyToServer, CancellingAStalledTransferEndsIt) {
  const fixture::ScriptedFtp server(kStalls);
  loginAt(server);
  atGate(server, "never", cancels);
  EXPECT_EQ(copy(3), 0);
  server.waitUntilAllClosed();
  EXPECT_EQ(server.commandCount("STOR"), 1);
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_THAT(record, ReportsFrom(failedLine, 6259));
  EXPECT_EQ(content(), "mine");
}

TEST_F(CopyToServer, ReconnectingRunsItAgainButTheFirstOutcomeStands) {
  const fixture::ScriptedFtp server(kStalls);
  loginAt(server);
  atGate(server, "never", reconnects);
  EXPECT_EQ(copy(3), 0);
  server.waitUntilAllClosed();
  EXPECT_EQ(server.commandCount("STOR"), 2);
  EXPECT_EQ(server.content("/b"), "mine");
  EXPECT_THAT(record, ReportsFrom(failedLine, 6259));
}

TEST_F(CopyToServer, OddNamesAreNamesLikeOthers) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  for (const std::string& name : kOddNames) {
    EXPECT_EQ(copy(0, "/" + name), 1) << name;
    ASSERT_TRUE(server.exists("/" + name)) << name;
  }
}

}  // namespace
