// SPDX-License-Identifier: MIT
// OnPoll while a removal waits for a server that keeps silent.
#include "tests/client/ChangeTest.h"

namespace {

// Where the worker of one of the removals hangs.
struct Stall {
  const char* name;
  const char* rules;  // the first attempt waits at the gate, the others are refused
  int refusals;       // of the rerun, which has one retry
  const char* verb;
  const char* failed;
  int line;
  QXBool (*run)(TQXIP& client);
};

QXBool removeFile(TQXIP& client) { return client.FTPRmvFile("/f", 0, 5, 11, 22); }
QXBool removeDirectory(TQXIP& client) { return client.FTPRmvDir("/e", 5, 11, 22); }

const Stall kStalls[] = {
    {"InTheRemovalOfAFile",
     R"([{"on": "DELE", "nth": 1, "do": [{"gate": "g"}]}, {"on": "DELE", "do": [{"reply": "550 No"}]}])", 2,
     "DELE", "TQXIP::FTPRmvFile '/f' failed!", 6687, &removeFile},
    {"InTheRemovalOfADirectory",
     R"([{"on": "RMD", "nth": 1, "do": [{"gate": "g"}]}, {"on": "RMD", "do": [{"reply": "550 No"}]}])", 2,
     "RMD", "TQXIP::FTPRemoveDir '/e' failed!", 7059, &removeDirectory},
    {"InTheLookAfterTheRemovalOfADirectory",
     R"([{"on": ["MLST", "MLSD"], "connection": 3, "do": [{"gate": "g"}]},
         {"on": "RMD", "do": [{"reply": "550 No"}]}])",
     3, "RMD", "TQXIP::FTPRemoveDir '/e' failed!", 7059, &removeDirectory},
};

class CancelRemoval : public ChangeTest, public testing::WithParamInterface<Stall> {
 protected:
  const fixture::ScriptedFtp server{R"({"tree": {"/f": "x", "/e/": {}}, "rules": )" +
                                    std::string(GetParam().rules) + "}"};
  int polls = 0;

  void SetUp() override { loginAt(server); }
  QXBool run() { return GetParam().run(client); }
};

TEST_P(CancelRemoval, ACancelEndsTheWorkerAndTheOperationAtOnce) {
  client.poll = [&](QXHostValue first, QXHostValue second, QXHostValue transfer, QXBool*) -> QXBool {
    EXPECT_EQ(first, 11u);
    EXPECT_EQ(second, 22u);
    EXPECT_EQ(transfer, 0u);
    ++polls;
    server.waitAtGate("g");
    return 1;
  };
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(polls, 1);
  EXPECT_STREQ(client.m_szMessage, GetParam().failed);
  EXPECT_THAT(record, ReportsFrom(GetParam().failed, GetParam().line));
  server.waitUntilAllClosed();
  EXPECT_TRUE(server.exists("/f"));
  EXPECT_TRUE(server.exists("/e"));
}

TEST_P(CancelRemoval, AReconnectRunsTheOperationOnceMoreWithOneRetry) {
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool* pReconnect) -> QXBool {
    if (++polls > 1) return 0;
    server.waitAtGate("g");
    *pReconnect = 1;
    return 0;
  };
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(server.commandCount(GetParam().verb), 1 + 2);
  EXPECT_STREQ(client.m_szMessage, GetParam().failed);
  server.waitUntilAllClosed();
}

TEST_P(CancelRemoval, ACancelBeatsAReconnect) {
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool* pReconnect) -> QXBool {
    ++polls;
    server.waitAtGate("g");
    *pReconnect = 1;
    return 1;
  };
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(polls, 1);
  EXPECT_EQ(server.commandCount(GetParam().verb), 1);
}

INSTANTIATE_TEST_SUITE_P(Stalls, CancelRemoval, testing::ValuesIn(kStalls),
                         [](const auto& instance) { return instance.param.name; });

using Rerun = ChangeTest;

TEST_F(Rerun, ThatSucceedsStillAnswersZeroBecauseTheFirstWorkerHadNoResult) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/f": "x"}, "rules": [{"on": "DELE", "nth": 1, "do": [{"gate": "g"}]}]})");
  loginAt(server);
  bool asked = false;
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool* pReconnect) -> QXBool {
    if (std::exchange(asked, true)) return 0;
    server.waitAtGate("g");
    *pReconnect = 1;
    return 0;
  };
  EXPECT_EQ(removeFile(client), 0);
  EXPECT_FALSE(server.exists("/f"));
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPRmvFile '/f' failed!", 6687));
}

}  // namespace
