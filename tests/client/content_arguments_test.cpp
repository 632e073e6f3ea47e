// SPDX-License-Identifier: MIT
// What FTPWriteFile and FTPReadFile refuse before they ask a server, and the write of no bytes.
#include <chrono>

#include "Src/RunningOperations.h"
#include "tests/client/ContentTest.h"
#include "tests/client/SlotHost.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Arguments : public ContentTest {
 protected:
  const fixture::ScriptedFtp server{R"({"tree": {"/a": "one"}})"};

  void SetUp() override { loginAt(server); }
  void expectNobodyAsked(const std::string& failedLine, int line) {
    EXPECT_EQ(server.connections().size(), 0u);
    EXPECT_TRUE(client.calls().empty());
    EXPECT_EQ(client.m_szMessage, failedLine);
    EXPECT_THAT(record, ReportsFrom(failedLine, line));
  }
};

struct BadWrite {
  const char* name;
  const char* path;
  const char* data;
  const char* failedLine;
};

class BadWriteArguments : public Arguments, public testing::WithParamInterface<BadWrite> {};

TEST_P(BadWriteArguments, StartNoWorker) {
  const auto& [name, path, data, failedLine] = GetParam();
  client.poll = [](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    ADD_FAILURE();
    return 1;
  };
  EXPECT_EQ(client.FTPWriteFile(path, data, 1, 0, 0, 3, 0, 0), 0);
  expectNobodyAsked(failedLine, 8669);
  EXPECT_EQ(progressIn(client.m_Transfer), Progress{});
}

INSTANTIATE_TEST_SUITE_P(
    Calls, BadWriteArguments,
    testing::Values(BadWrite{"NullPath", nullptr, "x", "TQXIP::FTPWriteFile '(null)' failed!"},
                    BadWrite{"EmptyPath", "", "x", "TQXIP::FTPWriteFile '' failed!"},
                    BadWrite{"NullData", "/a", nullptr, "TQXIP::FTPWriteFile '/a' failed!"}),
    [](const auto& instance) { return instance.param.name; });

struct BadRead {
  const char* name;
  const char* path;
  bool hasData;
  bool hasSize;
  const char* failedLine;
};

class BadReadArguments : public Arguments, public testing::WithParamInterface<BadRead> {};

TEST_P(BadReadArguments, StartNoWorkerAndLeaveTheAnswersAlone) {
  char before = 0;
  void* data = &before;
  std::uint32_t size = 99;
  EXPECT_EQ(client.FTPReadFile(GetParam().path, GetParam().hasData ? &data : nullptr,
                               GetParam().hasSize ? &size : nullptr, 0, 3, 0, 0),
            0);
  expectNobodyAsked(GetParam().failedLine, 9201);
  EXPECT_EQ(data, &before);
  EXPECT_EQ(size, 99u);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, BadReadArguments,
    testing::Values(BadRead{"NullPath", nullptr, true, true, "TQXIP::FTPReadFile '(null)' failed!"},
                    BadRead{"EmptyPath", "", true, true, "TQXIP::FTPReadFile '' failed!"},
                    BadRead{"NullBlockAddress", "/a", false, true, "TQXIP::FTPReadFile '/a' failed!"},
                    BadRead{"NullSizeAddress", "/a", true, false, "TQXIP::FTPReadFile '/a' failed!"}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(Arguments, PathsThatMayNotGoToAServerDoNot) {
  for (const std::string& path : kBadPaths) {
    record = {};
    EXPECT_EQ(client.FTPWriteFile(path.c_str(), "x", 1, 0, 0, 1, 0, 0), 0);
    EXPECT_THAT(std::string(record.szText), testing::EndsWith("[87 QXIP 8489]"));
    EXPECT_EQ(client.FTPWriteFile(path.c_str(), "x", 1, 1, 0, 1, 0, 0), 0);
    record = {};
    void* data = nullptr;
    std::uint32_t size = 0;
    EXPECT_EQ(client.FTPReadFile(path.c_str(), &data, &size, 0, 1, 0, 0), 0);
    EXPECT_THAT(std::string(record.szText), testing::EndsWith("[87 QXIP 9015]"));
    EXPECT_EQ(data, nullptr);
  }
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(Arguments, AWriteOfNoBytesFailsOnceMoreThanTheRetriesSay) {
  int connections = 0;
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    record = {};
    const auto start = steady_clock::now();
    EXPECT_EQ(client.FTPWriteFile("/a", "", 0, 0, 0, retries, 0, 0), 0);
    EXPECT_GE(steady_clock::now() - start, milliseconds(10) * retries);
    connections += static_cast<int>(retries) + 1;
    expectAttempts(server, static_cast<std::size_t>(connections));
    EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPWriteFile '/a' failed!");
    EXPECT_THAT(record, ReportsLastError("TQXIP::FTPWriteFileThr '/a' failed!", 87u, 8489));
  }
  EXPECT_EQ(server.commandCount("STOR"), 0);
  EXPECT_EQ(server.content("/a"), "one");
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_F(Arguments, AnAppendOfNoBytesFailsWithoutTouchingTheFile) {
  EXPECT_EQ(client.FTPWriteFile("/a", "", 0, 1, 0, 1, 0, 0), 0);
  EXPECT_EQ(server.commandCount("STOR"), 0);
  EXPECT_EQ(server.commandCount("RETR"), 0);
}

TEST_F(Arguments, FreeingCallsTheTwoHooksAndAnswersOneForNullToo) {
  EXPECT_EQ(client.FTPFreeFileAPI(nullptr), 1);
  EXPECT_EQ(client.calls(), (Names{"OnBeforeDisconnect", "OnAfterDisconnect"}));
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
}

// The upload of an empty file that the server refused comes down to a write of no bytes, which fails.
TEST_F(Arguments, ARefusedEmptyUploadIsTriedAsAWriteOfNoBytesWithThreeRetries) {
  const fixture::ScriptedFtp refusing(R"({"rules": [{"on": "STOR", "do": [{"reply": "553 No"}]}]})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", refusing.port(), 1);
  write("");
  EXPECT_EQ(host.FTPUploadFile("\\a", local.c_str(), 0), 0);
  EXPECT_EQ(host.calls(), (Names{"FTPUploadFile \\a " + local + " 0", "FTPWriteFile /a 0 0 1 3 0 0"}));
  expectAttempts(refusing, 5);
  EXPECT_EQ(refusing.commandCount("STOR"), 1);
  EXPECT_FALSE(refusing.exists("/a"));
  const std::string failedLine = "TQXIP::FTPUploadFile from '" + local + "'to '\\a' failed!";
  EXPECT_EQ(host.messagesAfter, (Names{"TQXIP::FTPWriteFile '/a' failed!", failedLine}));
  EXPECT_THAT(record, ReportsFrom(failedLine, 4004)) << "the write's own reports are forgotten";
}

TEST_F(Arguments, AWriteThatTheHostLetsSucceedMakesTheRefusedEmptyUploadASuccess) {
  const fixture::ScriptedFtp refusing(R"({"rules": [{"on": "STOR", "do": [{"reply": "553 No"}]}]})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", refusing.port(), 1);
  host.write = [] { return QXBool{1}; };
  write("");
  EXPECT_EQ(host.FTPUploadFile("/a", local.c_str(), 0), 1);
  EXPECT_TRUE(IsBlank(record));
}

// A transfer holds its own connection while it asks the client; the ends of both must leave a dead one alone.
TEST_F(Arguments, AClientThatGoesDuringTheQuestionOfATransferIsNotTouchedAgain) {
  const fixture::ScriptedFtp refusing(R"({"rules": [{"on": "STOR", "do": [{"reply": "553 No"}]}]})");
  const auto transferOf = [&](auto&& arm, auto&& operation) {
    SlotHost host(&record);
    host.FTPSetLogin("127.0.0.1", "user", "secret", refusing.port(), 1);
    arm(host);
    EXPECT_EQ(operation(host), 0);
    EXPECT_THAT(host.m_szMessage, testing::StartsWith("left alone"));
    EXPECT_EQ(host.m_bConnected, 1) << "the close of the transfer's own connection was told";
    EXPECT_TRUE(IsBlank(record));
  };
  const auto leave = [](SlotHost& host) {
    RunningOperation::Abandon(host);
    std::snprintf(host.m_szMessage, sizeof(host.m_szMessage), "left alone");
  };
  write("");
  transferOf([&](SlotHost& host) { host.size = [&] { return leave(host), 0u; }; },
             [&](SlotHost& host) { return host.FTPDownloadFile("/none", local.c_str(), 3); });
  transferOf(
      [&](SlotHost& host) {
        host.write = [&] {
          leave(host);
          return QXBool{0};
        };
      },
      [&](SlotHost& host) { return host.FTPUploadFile("/a", local.c_str(), 3); });
}

TEST_F(Arguments, AReconnectCallsTheSlotsWithOneRetryAndTheSameArguments) {
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  const auto first = [asked = 0](QXBool* reconnect) mutable -> QXBool {
    *reconnect = asked++ == 0 ? 1 : 0;
    return 0;
  };
  host.poll = first;
  EXPECT_EQ(host.FTPWriteFile("/b", "12345", 5, 0, 7, 4, 11, 22), 0);
  host.poll = first;
  void* data = nullptr;
  std::uint32_t size = 0;
  EXPECT_EQ(host.FTPReadFile("/a", &data, &size, 8, 4, 33, 44), 0);
  host.FTPFreeFileAPI(data);
  const Names calls = host.calls();
  EXPECT_THAT(calls, testing::IsSupersetOf({"FTPWriteFile /b 5 0 7 4 11 22", "FTPWriteFile /b 5 0 7 1 11 22",
                                            "FTPReadFile /a 8 4 33 44", "FTPReadFile /a 8 1 33 44"}));
  EXPECT_EQ(server.content("/b"), "12345");
}

}  // namespace
