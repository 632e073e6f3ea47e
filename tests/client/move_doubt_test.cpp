// SPDX-License-Identifier: MIT
// FTPMovFile after a copy that counts as done although its destination does not hold all: it deleted the
// source, which was the only whole file.
#include "tests/client/ContentTest.h"
#include "tests/client/ProgressLog.h"
#include "tests/client/SlotHost.h"

namespace {

class MoveInDoubt : public ContentTest {
 protected:
  static QXBool yes() { return 1; }

  const std::string source = localName(local);
  const ProgressLog log;

  QXBool move(const std::string& from, const std::string& to, QXProgress progress = nullptr) {
    return client.FTPMovFile(from.c_str(), to.c_str(), progress, 2, 0, 0);
  }
  static std::string refusing(const char* step) {
    return std::string(R"({"tree": {"/a": "one"}, "rules": [{"on": "STOR", "do": [)") + step + "]}]}";
  }
  // The move has made one copy, which counts as done, and has deleted nothing.
  void expectKept(const fixture::ScriptedFtp& server) {
    EXPECT_EQ(server.commandCount("DELE"), 0);
    EXPECT_TRUE(IsBlank(record));
    EXPECT_EQ(leftInTemporary(), Names{});
  }
};

TEST_F(MoveInDoubt, ACopyThatTheHostStopsLeavesTheSource) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one", "/b": "old"}})");
  loginAt(server);
  ProgressLog::stop() = yes;
  EXPECT_EQ(move("/a", "/b", &ProgressLog::note), 1);
  EXPECT_EQ(server.content("/b"), "old");
  EXPECT_EQ(move("/a", source, &ProgressLog::note), 1);
  EXPECT_EQ(server.content("/a"), "one");
  write("mine");
  EXPECT_EQ(move(source, "/b", &ProgressLog::note), 1);
  EXPECT_EQ(content(), "mine");
  EXPECT_EQ(server.content("/b"), "old");
  expectKept(server);
}

TEST_F(MoveInDoubt, BetweenTwoLocalPathsNothingIsDeleted) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("mine");
  EXPECT_EQ(move(source, localName(folder.file("other"))), 1);
  EXPECT_EQ(content(), "mine");
  EXPECT_FALSE(std::filesystem::exists(folder.file("other")));
  EXPECT_EQ(move(source, source), 1);
  EXPECT_EQ(content(), "mine");
  expectKept(server);
}

// What a program had written to it while its copy went to the server was deleted with it.
TEST_F(MoveInDoubt, ASourceThatHasChangedMeanwhileStays) {
  const fixture::ScriptedFtp server(refusing(R"({"normal": {"final_gate": "end"}})"));
  loginAt(server);
  write("mine");
  atGate(server, "end", [&](QXBool*) -> QXBool {
    write("mine, and more");
    server.release("end");
    return 0;
  });
  EXPECT_EQ(move(source, "/b"), 1);
  EXPECT_EQ(content(), "mine, and more");
  EXPECT_EQ(server.content("/b"), "mine");
  expectKept(server);
  EXPECT_EQ(move(source, "/b"), 1);
  EXPECT_FALSE(std::filesystem::exists(local));
}

TEST_F(MoveInDoubt, AnUploadThatTheServerRefusesOrBreaksLeavesTheSource) {
  for (const char* step :
       {R"({"reply": "553 No"})", R"({"normal": {"final": "552 Disk full"}})",
        R"({"normal": {"close_after": 1, "final": "552 Disk full"}})", R"({"normal": {"reset_after": 0}})"}) {
    const fixture::ScriptedFtp server(refusing(step));
    loginAt(server);
    write("mine");
    EXPECT_EQ(move(source, "/b"), 1) << step;
    EXPECT_EQ(content(), "mine") << step;
    EXPECT_EQ(move("/a", "/b"), 1) << step;
    EXPECT_EQ(server.content("/a"), "one") << step;
    EXPECT_EQ(server.commandCount("DELE"), 0) << step;
    EXPECT_EQ(leftInTemporary(), Names{});
  }
}

TEST_F(MoveInDoubt, OntoItselfTheFileStays) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one"}, "case_sensitive": false})");
  loginAt(server);
  for (const char* spelling :
       {"/pub/a", "\\pub\\a", "//pub/a", "/pub//a", "/pub/./a", "/PUB/A", "pub/a", "/pub/x/../a"}) {
    EXPECT_EQ(move("/pub/a", spelling), 1) << spelling;
    EXPECT_EQ(move(spelling, "/pub/a"), 1) << spelling;
    EXPECT_TRUE(server.exists("/pub/a")) << spelling;
    EXPECT_EQ(server.content("/pub/a"), "one") << spelling;
  }
  expectKept(server);
}

// A server whose word on the upload is lost, but which tells its size, has the whole file.
TEST_F(MoveInDoubt, AnUploadThatItsSizeConfirmsIsWhole) {
  const fixture::ScriptedFtp server(refusing(R"({"normal": {"final": "426 Aborted"}})"));
  loginAt(server);
  EXPECT_EQ(move("/a", "/b"), 1);
  EXPECT_EQ(server.names("/"), Names{"b"});
  EXPECT_EQ(server.content("/b"), "one");
}

class MoveInDoubtThroughSlots : public MoveInDoubt {
 protected:
  SlotHost host{&record};

  QXBool move(const fixture::ScriptedFtp& server, const std::string& from, const std::string& to,
              QXProgress progress = nullptr) {
    host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
    return host.FTPMovFile(from.c_str(), to.c_str(), progress, 0, 0, 0);
  }
};

// A host's own functions that call the library's pass its doubts on.
TEST_F(MoveInDoubtThroughSlots, TheLibrarysFunctionsBehindTheHostsTellTheirDoubts) {
  const fixture::ScriptedFtp server(refusing(R"({"reply": "553 No"})"));
  write("mine");
  EXPECT_EQ(move(server, source, "/b"), 1);
  EXPECT_EQ(content(), "mine");
  ProgressLog::stop() = yes;
  EXPECT_EQ(move(server, "/a", source, &ProgressLog::note), 1);
  EXPECT_TRUE(server.exists("/a"));
}

TEST_F(MoveInDoubtThroughSlots, WhatAHostsOwnFunctionCallsDoneIsItsWord) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  host.upload = [](const std::string&, const std::string&) { return QXBool{1}; };
  write("mine");
  EXPECT_EQ(move(server, source, "/b"), 1);
  EXPECT_FALSE(exists());
  host.copy = yes;
  EXPECT_EQ(move(server, "/a", "/b"), 1);
  EXPECT_FALSE(server.exists("/a"));
}

TEST_F(MoveInDoubtThroughSlots, ADoubtOfAnEarlierCopyIsForgotten) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  ProgressLog::stop() = yes;
  EXPECT_EQ(move(server, "/a", "/b", &ProgressLog::note), 1);
  EXPECT_EQ(move(server, "/a", "/b"), 1);
  EXPECT_EQ(server.names("/"), Names{"b"});
}

}  // namespace
