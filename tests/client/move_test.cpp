// SPDX-License-Identifier: MIT
// FTPMovFile: a copy, then the removal of the source.
#include <algorithm>
#include <chrono>
#include <utility>

#include "tests/client/ContentTest.h"
#include "tests/client/ProgressLog.h"
#include "tests/client/SlotHost.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Move : public ContentTest {
 protected:
  static QXBool yes() { return 1; }
  static QXBool no() { return 0; }

  const fixture::ScriptedFtp server{R"({"tree": {"/a": "one"}})"};
  const std::string source = localName(local);
  const ProgressLog log;
  SlotHost host{&record};

  void SetUp() override {
    loginAt(server);
    host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  }
  QXBool move(const std::string& from, const std::string& to, std::uint32_t retries = 0,
              QXProgress progress = nullptr) {
    return host.FTPMovFile(from.c_str(), to.c_str(), progress, retries, 11, 22);
  }
  static std::string failedLine(const std::string& from, const std::string& to) {
    return "TQXIP::FTPMovFile from '" + from + "' to '" + to + "' failed!";
  }
};

TEST_F(Move, ALocalSourceIsCopiedAndDeleted) {
  write("mine");
  EXPECT_EQ(move(source, "/b"), 1);
  EXPECT_FALSE(exists());
  EXPECT_EQ(server.content("/b"), "mine");
  EXPECT_EQ(host.m_szMessage, failedLine(source, "/b"));
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Move, AReadOnlyLocalSourceIsDeletedToo) {
  write("mine");
  std::filesystem::permissions(local, std::filesystem::perms::owner_read);
  EXPECT_EQ(move(source, "/b"), 1);
  EXPECT_FALSE(exists());
}

TEST_F(Move, ARemoteSourceIsDeletedOnTheServerAfterTheCopy) {
  EXPECT_EQ(client.FTPMovFile("/a", "/b", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(server.names("/"), Names{"b"});
  EXPECT_EQ(server.content("/b"), "one");
  const Names all = server.commands();
  const auto stored = std::find(all.begin(), all.end(), "STOR /b");
  ASSERT_NE(stored, all.end());
  EXPECT_NE(std::find(stored, all.end(), "DELE /a"), all.end());
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Move, ARemoteSourceIsDeletedAfterACopyToTheDisk) {
  EXPECT_EQ(client.FTPMovFile("/a", source.c_str(), nullptr, 0, 0, 0), 1);
  EXPECT_EQ(content(), "one");
  EXPECT_FALSE(server.exists("/a"));
}

TEST_F(Move, ARefusedDeletionRepeatsTheWholeMove) {
  const fixture::ScriptedFtp keeping(
      R"({"tree": {"/a": "one"}, "rules": [{"on": "DELE", "do": [{"reply": "550 No"}]}]})");
  loginAt(keeping);
  EXPECT_EQ(client.FTPMovFile("/a", "/b", nullptr, 1, 0, 0), 0);
  EXPECT_EQ(keeping.commandCount("RETR"), 2);
  EXPECT_EQ(keeping.commandCount("STOR"), 2);
  EXPECT_EQ(keeping.names("/"), (Names{"a", "b"}));
  EXPECT_EQ(client.m_szMessage, failedLine("/a", "/b"));
}

TEST_F(Move, CallsTheSlotsOfCopyAndRemovalWithItsOwnArguments) {
  host.remove = yes;
  EXPECT_EQ(move("\\a", "/b", 4, &ProgressLog::note), 1);
  EXPECT_EQ(host.calls().at(0), "FTPMovFile \\a /b 1 4 11 22");
  EXPECT_EQ(host.calls().at(1), "FTPCpyFile \\a /b 1 4 11 22");
  EXPECT_EQ(host.calls().back(), "FTPRmvFile \\a 0 4 11 22");
}

TEST_F(Move, OnlyARemoteSourceIsRemovedThroughTheSlot) {
  host.copy = host.remove = yes;
  for (const char* remote : {"/", "\\pub", "pub/x", "xy", "ab:c"}) {
    EXPECT_EQ(move(remote, "/b"), 1) << remote;
    EXPECT_EQ(host.calls().back(), std::string("FTPRmvFile ") + remote + " 0 0 11 22");
  }
  const std::size_t before = host.calls().size();
  for (const char* path : {"C:\\no\\where", "\\\\no\\where", "x"}) EXPECT_EQ(move(path, "/b"), 0) << path;
  EXPECT_EQ(host.calls().size(), before + 6) << "three moves and three copies";
}

TEST_F(Move, AFailedRemovalRepeatsTheMoveThroughTheSlot) {
  host.copy = yes;
  host.remove = no;
  host.takesReports = true;
  const auto start = steady_clock::now();
  EXPECT_EQ(move("/a", "/b", 3), 0);
  EXPECT_GE(steady_clock::now() - start, milliseconds(30));
  EXPECT_EQ(host.reports.size(), 4u) << "every run reports";
  Names expected;
  for (const char* left : {"3", "2", "1", "0"}) {
    expected.push_back(std::string("FTPMovFile /a /b 0 ") + left + " 11 22");
    expected.push_back(std::string("FTPCpyFile /a /b 0 ") + left + " 11 22");
    expected.push_back(std::string("FTPRmvFile /a 0 ") + left + " 11 22");
  }
  EXPECT_EQ(host.calls(), expected);
}

TEST_F(Move, ARepetitionThatSucceedsIsASuccess) {
  host.copy = yes;
  host.remove = [first = true]() mutable { return std::exchange(first, false) ? QXBool{0} : QXBool{1}; };
  EXPECT_EQ(move("/a", "/b", 5), 1);
  EXPECT_EQ(host.calls().size(), 6u);
  EXPECT_EQ(host.m_szMessage, failedLine("/a", "/b"));
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Move, AFailedCopyLeavesTheSource) {
  host.copy = host.remove = no;
  write("mine");
  EXPECT_EQ(move("/a", "/b", 1), 0);
  EXPECT_EQ(move(source, "/b"), 0);
  EXPECT_EQ(content(), "mine");
  for (const std::string& call : host.calls()) EXPECT_FALSE(call.starts_with("FTPRmvFile")) << call;
  EXPECT_THAT(record, ReportsFrom(failedLine("/a", "/b"), 6345));
}

TEST_F(Move, EveryRunEndsWithItsOwnLine) {
  host.copy = no;
  EXPECT_EQ(move("/a", "/b", 1), 0);
  const std::string line = failedLine("/a", "/b");
  const std::string entry = "TQXIP::FTPMovFile - IN: From '/a' to '/b'";
  EXPECT_EQ(host.messagesAfter, (Names{entry, entry, line, line})) << "of two copies and two moves";
}

TEST_F(Move, ALocalSourceThatCannotBeDeletedIsAFailure) {
  host.copy = yes;
  EXPECT_EQ(move(source, "/b"), 0);
  EXPECT_THAT(record, ReportsLastError(failedLine(source, "/b"), 2u, 6345));
}

TEST_F(Move, OddNamesAreNamesLikeOthers) {
  for (const std::string& name : kOddNames) {
    SCOPED_TRACE(name);
    const std::string path = "/" + name;
    server.putText(path, "of " + name);
    EXPECT_EQ(client.FTPMovFile(path.c_str(), source.c_str(), nullptr, 0, 0, 0), 1);
    EXPECT_FALSE(server.exists(path));
    EXPECT_EQ(content(), "of " + name);
    EXPECT_EQ(client.FTPMovFile(source.c_str(), path.c_str(), nullptr, 0, 0, 0), 1);
    ASSERT_TRUE(server.exists(path));
    EXPECT_EQ(server.content(path), "of " + name);
    EXPECT_FALSE(exists());
  }
}

TEST_F(Move, ACancelledCopyLeavesTheSource) {
  host.poll = [](QXBool*) { return QXBool{1}; };
  write("mine");
  EXPECT_EQ(move(source, "/b"), 0);
  EXPECT_EQ(content(), "mine");
}

TEST_F(Move, ACancelledCopyIsTriedAgainWhileRetriesAreLeft) {
  host.poll = [](QXBool*) { return QXBool{1}; };
  EXPECT_EQ(move("/a", "/b", 2), 0);
  // A worker may have asked for the size before it was cancelled.
  auto calls = host.calls();
  std::erase_if(calls, [](const std::string& call) { return call.starts_with("FTPFileSize"); });
  EXPECT_EQ(calls.size(), 6u) << "three moves, three copies";
  EXPECT_TRUE(server.exists("/a"));
}

struct BadMove {
  const char* name;
  const char* from;
  const char* to;
  const char* failedLine;
};

class BadMoveArguments : public Move, public testing::WithParamInterface<BadMove> {};

TEST_P(BadMoveArguments, CopyAndRemoveNothing) {
  const auto& [name, from, to, line] = GetParam();
  EXPECT_EQ(host.FTPMovFile(from, to, nullptr, 2, 11, 22), 0);
  EXPECT_EQ(host.calls().size(), 3u) << "three moves alone";
  EXPECT_STREQ(host.m_szMessage, line);
  EXPECT_THAT(record, ReportsLastError(line, 87u, 6345));
  EXPECT_EQ(server.connections().size(), 0u);
  // A repetition finds the entry line of the run before it.
  const bool isNull = from == nullptr || to == nullptr;
  EXPECT_EQ(host.messagesBefore.at(1),
            isNull ? std::string("TQXIP::FTPMovFile - IN: 'NULL'")
                   : std::string("TQXIP::FTPMovFile - IN: From '") + from + "' to '" + to + "'");
}

INSTANTIATE_TEST_SUITE_P(
    Calls, BadMoveArguments,
    testing::Values(BadMove{"NullSource", nullptr, "/b", "TQXIP::FTPMovFile from '(null)' to '/b' failed!"},
                    BadMove{"NullDestination", "/a", nullptr,
                            "TQXIP::FTPMovFile from '/a' to '(null)' failed!"},
                    BadMove{"EmptySource", "", "/b", "TQXIP::FTPMovFile from '' to '/b' failed!"},
                    BadMove{"EmptyDestination", "/a", "", "TQXIP::FTPMovFile from '/a' to '' failed!"}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(Move, AClientThatIsNotInitialisedMovesNothing) {
  host.m_bInitialized = 0;
  EXPECT_EQ(move("/a", "/b", 1), 0);
  host.m_bInitialized = 1;
  EXPECT_EQ(host.calls(), (Names{"FTPMovFile /a /b 0 1 11 22", "FTPMovFile /a /b 0 0 11 22"}));
  EXPECT_THAT(record, ReportsFrom(failedLine("/a", "/b"), 6345));
}

TEST_F(Move, PathsThatMayNotGoToAServerDoNotAndDeleteNothing) {
  write("mine");
  for (const std::string& path : kBadPaths) {
    EXPECT_EQ(move(path, "/b", 1), 0);
    EXPECT_EQ(move(source, path, 1), 0);
    EXPECT_EQ(move("/a", path, 1), 0);
  }
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_EQ(content(), "mine");
}

TEST_F(Move, WithoutAnErrorRecordAFailureChangesTheMessageAlone) {
  RecordingClient silent;
  silent.FTPSetLogin("127.0.0.1", "u", "p", server.port(), 1);
  EXPECT_EQ(silent.FTPMovFile("/none", "/b", nullptr, 0, 0, 0), 0);
  EXPECT_EQ(silent.m_szMessage, failedLine("/none", "/b"));
}

}  // namespace
