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

// More than the system takes of it while nobody reads.
constexpr std::uint64_t kLarge = 64 << 20;

class CopyThatTells : public CopyToServer {
 protected:
  void tellingLoginAt(const fixture::Server& server) {
    client.FTPSetLogin((server.host() + ";progress=uploads").c_str(), "user", "secret", server.port(), 1);
  }
};

TEST_F(CopyThatTells, OnPollSeesHowFarItIs) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"stall_after": 1000, "gate": "never"}}]}]})");
  tellingLoginAt(server);
  std::filesystem::resize_file(local, kLarge);
  Progress last;
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue transfer, QXBool*) -> QXBool {
    last = progressIn(*reinterpret_cast<QXTransfer*>(transfer));
    return last.transferred > 0 ? 1 : 0;
  };
  EXPECT_EQ(copy(), 0);
  EXPECT_EQ(last.valid, 1);
  EXPECT_EQ(last.total, kLarge);
  EXPECT_LT(last.transferred, kLarge);
}

TEST_F(CopyThatTells, ShowsAllInTheEndAndOfAMoveToo) {
  const fixture::ScriptedFtp server;
  tellingLoginAt(server);
  EXPECT_EQ(copy(), 1);
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, 4, 4}));
  client.m_Transfer = {};
  EXPECT_EQ(client.FTPMovFile(source.c_str(), "/c", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, 4, 4}));
}

// The way down of one that nobody can measure has no total.
TEST_F(CopyThatTells, OnTheServerItCountsTheWayUpAsWell) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 9000, "seed": 7}},
          "rules": [{"on": ["MLST", "MLSD", "SIZE", "LIST", "NLST"], "do": [{"reply": "550 No"}]}]})");
  tellingLoginAt(server);
  EXPECT_EQ(client.FTPCpyFile("/a", "/b", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, 9000, 9000}));
}

TEST_F(CopyToServer, ShowsNoProgressUnasked) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  watchProgress();
  EXPECT_EQ(copy(), 1);
  EXPECT_EQ(client.FTPMovFile(source.c_str(), "/c", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(progressIn(client.m_Transfer), Progress{});
  for (const Progress& each : seen) EXPECT_EQ(each, Progress{});
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
