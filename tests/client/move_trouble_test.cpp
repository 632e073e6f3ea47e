// SPDX-License-Identifier: MIT
// FTPMovFile at servers that are not there, break off or keep silent: the source goes only after the whole
// copy.
#include "tests/client/ContentTest.h"

namespace {

class MoveTrouble : public ContentTest {
 protected:
  const std::string source = localName(local);

  QXBool move(const std::string& from, const std::string& to, std::uint32_t retries = 0) {
    return client.FTPMovFile(from.c_str(), to.c_str(), nullptr, retries, 0, 0);
  }
  static std::string failedLine(const std::string& from, const std::string& to) {
    return "TQXIP::FTPMovFile from '" + from + "' to '" + to + "' failed!";
  }
};

TEST_F(MoveTrouble, WhereNobodyListensTheSourceStays) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  write("mine");
  EXPECT_EQ(move(source, "/b", 1), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 3u) << "two attempts of the first copy, one of the second";
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_EQ(client.m_szMessage, failedLine(source, "/b"));
  EXPECT_EQ(content(), "mine");
}

TEST_F(MoveTrouble, ATransferThatBreaksOffLeavesTheSourceAndIsMadeUpForByTheNext) {
  const fixture::ScriptedFtp breaking(
      R"({"tree": {"/a": {"size": 100000, "seed": 9}},
          "rules": [{"on": "RETR", "nth": [1, 2], "do": [{"normal": {"close_after": 50000}}]}]})");
  loginAt(breaking);
  EXPECT_EQ(move("/a", source), 0);
  EXPECT_TRUE(breaking.exists("/a"));
  EXPECT_EQ(breaking.commandCount("DELE"), 0);
  EXPECT_EQ(move("/a", source, 1), 1);
  EXPECT_TRUE(testing_support::Pattern(9).matchesFile(local, 100'000));
  EXPECT_FALSE(breaking.exists("/a"));
}

// Where a move waits for a silent server: in its copy or in its removal.
class MoveStall : public MoveTrouble, public testing::WithParamInterface<const char*> {
 protected:
  const fixture::ScriptedFtp stalling{std::string(R"({"tree": {"/a": "one"}, "rules": [{"on": ")") +
                                      GetParam() + R"(", "nth": 1, "do": [{"gate": "g"}, "normal"]}]})"};
  void SetUp() override { loginAt(stalling); }
  void onceStalled(const Gate& action) {
    client.poll = [this, action, first = true](QXHostValue, QXHostValue, QXHostValue,
                                               QXBool* reconnect) mutable -> QXBool {
      if (!first || stalling.commandCount(GetParam()) == 0) return 0;
      first = false;
      stalling.waitAtGate("g");
      return action(reconnect);
    };
  }
};

TEST_P(MoveStall, IsEndedByACancelAndTheSourceStays) {
  onceStalled(cancels);
  EXPECT_EQ(move("/a", "/b"), 0);
  stalling.waitUntilAllClosed();
  EXPECT_TRUE(stalling.exists("/a"));
  EXPECT_EQ(client.m_szMessage, failedLine("/a", "/b"));
  EXPECT_EQ(leftInTemporary(), Names{});
}

// The part of the move is run again, but the outcome of its first run stands.
TEST_P(MoveStall, IsNoSuccessAfterAReconnect) {
  onceStalled(reconnects);
  EXPECT_EQ(move("/a", "/b"), 0);
  stalling.waitUntilAllClosed();
  EXPECT_EQ(stalling.content("/b"), "one");
  EXPECT_EQ(stalling.commandCount(GetParam()), 2);
  EXPECT_EQ(stalling.exists("/a"), GetParam() == std::string("RETR")) << "the second removal has removed it";
}

INSTANTIATE_TEST_SUITE_P(Verbs, MoveStall, testing::Values("RETR", "DELE"),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
