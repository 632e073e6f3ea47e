// SPDX-License-Identifier: MIT
// FTPCpyFile from and to a named pipe. Where nobody was at its other end a cancel waited for ever.
#include <sys/stat.h>

#include <fstream>
#include <future>
#include <sstream>

#include "tests/client/ContentTest.h"

namespace {

class PipeCopy : public ContentTest {
 protected:
  PipeCopy() {
    EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    loginAt(server);
  }
  QXBool copy(const std::string& from, const std::string& to) {
    return client.FTPCpyFile(from.c_str(), to.c_str(), nullptr, 3, 0, 0);
  }
  // OnPoll cancels some turns after the server has got a command, when the worker waits for the pipe.
  void cancelAfter(const char* verb) {
    client.poll = [this, verb, turns = 0](QXHostValue, QXHostValue, QXHostValue, QXBool*) mutable -> QXBool {
      if (turns == 0) server.waitForCommand(verb);
      return ++turns > 20 ? 1 : 0;
    };
  }

  const fixture::ScriptedFtp server{R"({"tree": {"/a": {"size": 300000, "seed": 3}}})"};
  const std::string pipe = folder.file("pipe");
};

TEST_F(PipeCopy, ThatNobodyReadsEndsWithACancel) {
  cancelAfter("RETR");
  EXPECT_EQ(copy("/a", localName(pipe)), 0);
  EXPECT_EQ(client.count("OnIPError"), 0U);
}

TEST_F(PipeCopy, ThatNobodyWritesEndsWithACancel) {
  cancelAfter("PASS");
  EXPECT_EQ(copy(localName(pipe), "/b"), 0);
  EXPECT_FALSE(server.exists("/b"));
}

TEST_F(PipeCopy, GoesToWhoReads) {
  auto got = std::async(std::launch::async, [this] {
    std::ostringstream text;
    text << std::ifstream(pipe, std::ios::binary).rdbuf();
    return text.str();
  });
  EXPECT_EQ(copy("/a", localName(pipe)), 1);
  EXPECT_TRUE(got.get() == patternText(300000, 3));
}

}  // namespace
