// SPDX-License-Identifier: MIT
// What the public header says of polls, counters and blocks, where no other test is about it.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "QXHooks.h"
#include "tests/dll/library.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace {

// What OnPoll was asked with.
struct Poll {
  const void* transfer;
  bool mayReconnect;
};

QXBool notePoll(TQXIPIFInt* client, QXHostValue, QXHostValue, QXHostValue transfer, QXBool* pbReconnect) {
  QXClientHooks::ContextOf<std::vector<Poll>>(client).push_back(
      {reinterpret_cast<const void*>(transfer), pbReconnect != nullptr});
  return 0;
}

class Stated : public ClientTest {
 protected:
  Stated() {
    client->FTPSetLogin("127.0.0.1", "me", "secret", server.port(), 1);
    hooks->OnPoll = &notePoll;
  }

  fixture::ScriptedFtp server{R"({"tree": {"/pub/a.txt": "hello"}})"};
  std::vector<Poll> polls;
  QXClientHooks hooks{client.get(), &polls};
};

TEST_F(Stated, OnPollOfATransferGetsTheCounters) {
  void* data = nullptr;
  std::uint32_t size = 0;
  ASSERT_EQ(client->FTPReadFile("/pub/a.txt", &data, &size, 0, 0, 0, 0), 1);
  ASSERT_FALSE(polls.empty());
  EXPECT_EQ(polls.front().transfer, &client->m_Transfer);
  EXPECT_TRUE(polls.front().mayReconnect);
  EXPECT_EQ(client->m_Transfer.nTransferred, 5U);
  static_cast<char*>(data)[size] = '\0';  // there is room for it
  EXPECT_STREQ(static_cast<const char*>(data), "hello");
  client->FTPFreeFileAPI(data);
}

TEST_F(Stated, OnPollOfARemovalGetsNone) {
  ASSERT_EQ(client->FTPRmvFile("/pub/a.txt", 0, 0, 0, 0), 1);
  ASSERT_FALSE(polls.empty());
  EXPECT_EQ(polls.front().transfer, nullptr);
  EXPECT_TRUE(polls.front().mayReconnect);
}

TEST_F(Stated, OnPollOfAWebDownloadGetsNoneAndCannotReconnect) {
  const fixture::ScriptedHttp web(R"({"answers": [{"body": {"size": 50000, "seed": 7}}]})");
  const testing_support::ScratchFolder scratch;
  ASSERT_EQ(
      client->HTTPDownloadFile("127.0.0.1", "/", web.port(), scratch.file("page").c_str(), nullptr, 0, 0),
      1U);
  ASSERT_FALSE(polls.empty());
  EXPECT_EQ(polls.front().transfer, nullptr);
  EXPECT_FALSE(polls.front().mayReconnect);
}

TEST_F(Stated, TheCountersStayUntilTheHostZeroesThem) {
  void* data = nullptr;
  std::uint32_t size = 0;
  ASSERT_EQ(client->FTPReadFile("/pub/a.txt", &data, &size, 0, 0, 0, 0), 1);
  client->FTPFreeFileAPI(data);
  ASSERT_EQ(client->FTPRmvFile("/pub/a.txt", 0, 0, 0, 0), 1);
  EXPECT_EQ(client->m_Transfer.bValid, 1);
}

TEST_F(Stated, ABlockGoesBackThroughAnyClient) {
  void* data = nullptr;
  std::uint32_t size = 0;
  ASSERT_EQ(client->FTPReadFile("/pub/a.txt", &data, &size, 0, 0, 0, 0), 1);
  EXPECT_EQ(makeClient(library(), nullptr)->FTPFreeFileAPI(data), 1);
}

TEST_F(Stated, AMissingDirectoryIsFoundGoneAndListsAsEmpty) {
  std::uint32_t count = 7;
  EXPECT_EQ(client->FTPGetDirectory("/none", nullptr, &count, "*.*", 0), 1);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(client->FTPRmvDir("/none", 0, 0, 0), 1);
  EXPECT_EQ(error.bSet & 0xFFU, 1U);
  EXPECT_EQ(error.nError, 0U);
}

TEST_F(Stated, ACopysCallbackComesOnTheWorkersThread) {
  static std::atomic<int> calls;
  static std::atomic<std::thread::id> thread;
  calls = 0;
  const QXProgress progress = [](const char*, std::uint32_t, std::uint32_t) -> QXBool {
    ++calls;
    thread = std::this_thread::get_id();
    return 0;
  };
  const testing_support::ScratchFolder scratch;
  const std::string local = testing_support::localName(scratch.file("local"));
  ASSERT_EQ(client->FTPCpyFile("/pub/a.txt", local.c_str(), progress, 0, 0, 0), 1);
  EXPECT_EQ(calls, 1);
  EXPECT_NE(thread.load(), std::this_thread::get_id());
}

template <void (*QXClientTable::*Hook)(TQXIPIFInt*)>
void noteCall(TQXIPIFInt* client) {
  QXClientHooks::ContextOf<std::vector<std::string>>(client).emplace_back("told");
  (QXHooksOf(client)->pOriginal->*Hook)(client);
}

TEST_F(Stated, WithoutARecordHooksDoNotFollowConnections) {
  for (QXErrorInfo* const record : {static_cast<QXErrorInfo*>(nullptr), &error}) {
    const Client silent = makeClient(library(), record);
    std::vector<std::string> calls;
    QXClientHooks own(silent.get(), &calls);
    own->OnSuccess = &noteCall<&QXClientTable::OnSuccess>;
    own->OnDisconnect = &noteCall<&QXClientTable::OnDisconnect>;
    silent->FTPSetLogin("127.0.0.1", "me", "secret", server.port(), 1);
    EXPECT_EQ(silent->FTPFileSize("/pub/a.txt", 0, 0, 0), 5U);
    EXPECT_EQ(calls.empty(), record == nullptr);
  }
}

TEST_F(Stated, AWebDownloadThrowsWhereItsFileCannotBeMade) {
  const fixture::ScriptedHttp web(R"({"answers": [{"body": {"text": "hello"}}]})");
  const testing_support::ScratchFolder scratch;
  const std::string local = scratch.file("none/page");
  try {
    client->HTTPDownloadFile("127.0.0.1", "/", web.port(), local.c_str(), nullptr, 0, 0);
    ADD_FAILURE() << "it made a file without a folder";
  } catch (void* thrown) {      // hosts know no more of it
    ::operator delete(thrown);  // these builds of host and library share the C heap
  }
  EXPECT_EQ(error.bSet, 0U);
  EXPECT_STREQ(client->m_szMessage, "");
}

}  // namespace
