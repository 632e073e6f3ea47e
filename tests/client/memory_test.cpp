// SPDX-License-Identifier: MIT
// What the caller's side of an operation does when memory runs out, a worker that cannot be started above
// all; and the lines that stand in the message buffer for no hook to see, looked at from within an
// allocation.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Src/TInternetSession.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"
#include "tests/support/AllocationWatch.h"

namespace {

using testing_support::AllocationWatch;

// An operation with a worker, on the path "/x". No line: a query, which OnIPError reports for.
struct Operation {
  const char* name;
  const char* entryLine;
  const char* failedLine;
  int line;
  std::uint32_t (*run)(TQXIP& client);
};

const Operation kOperations[] = {
    {"DirExist", "", "TQXIP::FTPDirExist '/x' failed!", 0,
     [](TQXIP& client) -> std::uint32_t { return client.FTPDirExist("/x", 3, 0, 0); }},
    {"FileExists", "", "TQXIP::FTPFileExists '/x' failed!", 0,
     [](TQXIP& client) -> std::uint32_t { return client.FTPFileExists("/x", 3, 0, 0); }},
    {"FileSize", "", "TQXIP::OnIPError: 'FTP-Error!' (8)", 0,
     [](TQXIP& client) { return client.FTPFileSize("/x", 3, 0, 0); }},
    {"RmvFile", "TQXIP::FTPRmvFile - IN: '/x'", "TQXIP::FTPRmvFile '/x' failed!", 6687,
     [](TQXIP& client) -> std::uint32_t { return client.FTPRmvFile("/x", 0, 3, 0, 0); }},
    {"CpyFile", "TQXIP::FTPCpyFile - IN: From '/x' to '/y'", "TQXIP::FTPCpyFile from '/x' to '/y' failed!",
     6259, [](TQXIP& client) -> std::uint32_t { return client.FTPCpyFile("/x", "/y", nullptr, 3, 0, 0); }},
    {"WriteFile", "TQXIP::FTPWriteFile - IN: '/x'", "TQXIP::FTPWriteFile '/x' failed!", 8669,
     [](TQXIP& client) -> std::uint32_t { return client.FTPWriteFile("/x", "data", 4, 0, 0, 3, 0, 0); }},
    {"ReadFile", "TQXIP::FTPReadFile - IN: '/x'", "TQXIP::FTPReadFile '/x' failed!", 9201,
     [](TQXIP& client) -> std::uint32_t {
       void* block = nullptr;
       std::uint32_t size = 0;
       return client.FTPReadFile("/x", &block, &size, 0, 3, 0, 0);
     }},
};

class FinderHost final : public TQXIP {
 public:
  explicit FinderHost(QXErrorInfo* pErrorInfo) : TQXIP(pErrorInfo) {}
  ~FinderHost() = default;
  ScriptedFinder finder;
  CFtpFileFind* GetFinder(QXHostValue, const char*) override { return &finder; }
};

class Memory : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};
  ScriptedFinder finder;
};

class NoWorker : public Memory, public testing::WithParamInterface<Operation> {};

// A query without one left a record without a number, that of a "no", and the size none at all: a file that
// could not be asked about was not there, and FTPReadFile read it as empty.
TEST_P(NoWorker, IsAFailureOfTheOperation) {
  client.finder = &finder;
  std::uint32_t answer = 77;
  const int allocations = testing_support::failEachAllocation(
      [&] {
        record = {};
        client.m_szMessage[0] = '\0';
        answer = GetParam().run(client);
        client.forget();
      },
      [&] {
        EXPECT_EQ(answer, 0u);
        EXPECT_STREQ(client.m_szMessage, GetParam().failedLine);
        if (GetParam().line == 0) {
          EXPECT_THAT(record, ReportsIPError("FTP-Error!", 8u));
        } else {
          EXPECT_THAT(record, ReportsLastError(GetParam().failedLine, 8u, GetParam().line));
        }
        EXPECT_TRUE(finder.patterns.empty());
      });
  EXPECT_GT(allocations, 0);
}

INSTANTIATE_TEST_SUITE_P(Operations, NoWorker, testing::ValuesIn(kOperations),
                         [](const auto& instance) { return instance.param.name; });

class EntryLine : public NoWorker {};

TEST_P(EntryLine, StandsInTheMessageBeforeTheWorkerStarts) {
  std::string message = "none seen";
  {
    const AllocationWatch watch([&](int number) {
      if (number == 0) message = client.m_szMessage;
      return false;
    });
    GetParam().run(client);
  }
  EXPECT_EQ(message, GetParam().entryLine);
}

INSTANTIATE_TEST_SUITE_P(Operations, EntryLine, testing::ValuesIn(kOperations),
                         [](const auto& instance) { return instance.param.name; });

// Blocks that a client keeps from call to call.
struct Keeping {
  const char* name;
  void (*run)(TQXIP& client);
};

void list(TQXIP& client) {
  std::uint32_t count = 0;
  EXPECT_EQ(client.FTPGetDirectory("/x", nullptr, &count, "*.*", 0), 1);
}

const Keeping kKeepings[] = {
    {"Nothing", [](TQXIP&) {}},
    {"APendingListing", &list},
    {"TheLaterOfTwoListings",
     [](TQXIP& client) {
       list(client);
       list(client);
     }},
    {"AListingThatWasFetched",
     [](TQXIP& client) {
       list(client);
       QXDirEntry entry{};
       std::uint32_t count = 1;
       EXPECT_EQ(client.FTPGetDirectory("/x", &entry, &count, "*.*", 0), 1);
     }},
    {"AListingThatCouldNotBeFetched",
     [](TQXIP& client) {
       list(client);
       QXDirEntry entry{};
       EXPECT_EQ(client.FTPGetDirectory("/x", &entry, nullptr, "*.*", 0), 0);
     }},
    {"CountedItems", [](TQXIP& client) { client.FTPCountFolderItems("/x", nullptr, nullptr, 0); }},
    {"Finders",
     [](TQXIP& client) {
       client.m_pFTPFileFind = new CFtpFileFind(nullptr);
       client.m_pFTPFileSize = new CFtpFileFind(nullptr);
     }},
    {"AQuery", [](TQXIP& client) { client.FTPFileExists("/x", 0, 0, 0); }},
};

class Kept : public testing::TestWithParam<Keeping> {};

TEST_P(Kept, GoesWithTheClient) {
  const auto live = [] {
    FinderHost host(nullptr);
    host.finder.answersWith({{.name = "a"}});
    GetParam().run(host);
  };
  live();  // what is kept for good, by the run-time library or for each server, is there after the first time
  const long held = testing_support::blocksHeld();
  live();
  EXPECT_EQ(testing_support::blocksHeld(), held);
}

INSTANTIATE_TEST_SUITE_P(Clients, Kept, testing::ValuesIn(kKeepings),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(Memory, TheEntryLineOfConnectSaysNullForANullHost) {
  delete std::exchange(client.m_pInternetSession, nullptr);
  std::string message;
  {
    const AllocationWatch watch([&](int number) {
      if (number == 0) message = client.m_szMessage;
      return true;
    });
    EXPECT_EQ(client.FTPConnect(nullptr, "", "", 21, 0, 0, nullptr), 0);
  }
  EXPECT_EQ(message, "TQXIP::FTPConnect - IN: 'NULL'");
}

// An operation on the caller's thread. Its report, where it has one, may come from a listing inside it.
struct CallersOperation {
  const char* name;
  bool reports;
  QXBool (*run)(TQXIP& client);
};

const CallersOperation kCallersOperations[] = {
    {"SetLogin", false, [](TQXIP& client) { return client.FTPSetLogin("host", "user", "secret", 21, 1); }},
    {"Disconnect", false, [](TQXIP& client) { return client.FTPDisconnect(); }},
    {"GetDirectory", true,
     [](TQXIP& client) -> QXBool {
       std::uint32_t count = 77;
       const QXBool result = client.FTPGetDirectory("/x", nullptr, &count, "*.*", 0);
       EXPECT_EQ(count, result != 0 ? 2u : 0u);
       return result;
     }},
    {"HasSubDir", true, [](TQXIP& client) { return client.FTPHasSubDir("/x", 0); }},
    {"CountFolderItems", true,
     [](TQXIP& client) { return client.FTPCountFolderItems("/x", nullptr, nullptr, 0); }},
};

class ScarceMemory : public Memory, public testing::WithParamInterface<CallersOperation> {};

TEST_P(ScarceMemory, IsAFailureLikeOthers) {
  FinderHost host(&record);
  host.finder.answersWith({{.name = "a"}, {.name = "d", .isDirectory = true}});
  QXBool answer = 0;
  const int allocations = testing_support::failEachAllocation([&] { answer = GetParam().run(host); },
                                                              [&] {
                                                                EXPECT_EQ(answer, 0);
                                                                EXPECT_THAT(std::string(record.szText),
                                                                            testing::HasSubstr(" [8 QXIP "));
                                                                record = {};
                                                                platform::setLastError(0);
                                                              });
  EXPECT_EQ(allocations > 0, GetParam().reports);
  EXPECT_EQ(answer, 1) << "with memory";
  EXPECT_TRUE(IsBlank(record));
}

INSTANTIATE_TEST_SUITE_P(Operations, ScarceMemory, testing::ValuesIn(kCallersOperations),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(Memory, KeepAliveReturnsWhereItGetsNoWorker) {
  client.m_bConnected = 1;
  {
    const AllocationWatch nothingLeft([](int) { return false; });
    client.FTPKeepAlive();
  }
  EXPECT_EQ(client.m_bConnected, 1);
  client.m_bConnected = 0;
}

}  // namespace
