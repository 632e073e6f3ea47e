// SPDX-License-Identifier: MIT
// Retries go through the object's own table: a host's function in a slot is called with one retry less, the
// library's own is repeated without growing the stack.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Src/RunningOperations.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"

namespace {

using Counts = std::vector<std::uint32_t>;

// A host with functions of its own in the six slots that retry through themselves. Each notes the retry
// count, and from `succeedsFrom` calls on answers 1 without asking the library.
class HostSlots final : public TQXIP {
 public:
  explicit HostSlots(QXErrorInfo* pErrorInfo) : TQXIP(pErrorInfo) {}
  ~HostSlots() = default;

  ScriptedFinder finder;
  Counts retries;
  std::size_t succeedsFrom = 1000;
  std::vector<std::string> messagesAfter;  // after each call into the library, innermost first
  int reports = 0;                         // that those calls have filed, if they are taken out
  bool takesReports = false;
  bool listsThroughTheLibrary = true;
  bool goesInAListing = false;  // as a client does that its host frees in a message

  CFtpFileFind* GetFinder(QXHostValue, const char*) override { return &finder; }

  QXBool FTPGetDirectory(const char* path, QXDirEntry* entries, std::uint32_t* count, const char* pattern,
                         std::uint32_t retryCount) override {
    if (goesInAListing) RunningOperation::Abandon(*this);
    if (!listsThroughTheLibrary) return 0;
    return noted(retryCount,
                 [&] { return TQXIP::FTPGetDirectory(path, entries, count, pattern, retryCount); });
  }
  QXBool FTPDownloadFile(const char* remote, const char* local, std::uint32_t retryCount) override {
    return noted(retryCount, [&] { return TQXIP::FTPDownloadFile(remote, local, retryCount); });
  }
  QXBool FTPUploadFile(const char* remote, const char* local, std::uint32_t retryCount) override {
    return noted(retryCount, [&] { return TQXIP::FTPUploadFile(remote, local, retryCount); });
  }
  QXBool FTPHasSubDir(const char* path, std::uint32_t retryCount) override {
    return noted(retryCount, [&] { return TQXIP::FTPHasSubDir(path, retryCount); });
  }
  QXBool FTPCountFolderItems(const char* path, std::uint32_t* files, std::uint32_t* directories,
                             std::uint32_t retryCount) override {
    return noted(retryCount,
                 [&] { return TQXIP::FTPCountFolderItems(path, files, directories, retryCount); });
  }
  QXBool FTPCreateNewDir(const char* parent, char* created, const char* base,
                         std::uint32_t retryCount) override {
    return noted(retryCount, [&] { return TQXIP::FTPCreateNewDir(parent, created, base, retryCount); });
  }

 private:
  template <typename Call>
  QXBool noted(std::uint32_t retryCount, Call&& call) {
    retries.push_back(retryCount);
    if (retries.size() >= succeedsFrom) return 1;
    const QXBool result = call();
    messagesAfter.emplace_back(m_szMessage);
    if (takesReports && m_pErrorInfo->bSet != 0) {
      ++reports;
      *m_pErrorInfo = {};
    }
    return result;
  }
};

// One of the six operations, failing as often as it is asked.
struct Operation {
  const char* name;
  std::string message;  // at the end of a failed run
  bool listsThroughTheLibrary;
  QXBool (*run)(TQXIP& client, std::uint32_t retries);
};

const Operation kOperations[] = {
    {"GetDirectory", "TQXIP::FTPGetDirectory - IN: 'Failed'", true,
     [](TQXIP& client, std::uint32_t retries) {
       std::uint32_t count = 0;
       return client.FTPGetDirectory(nullptr, nullptr, &count, "*.*", retries);
     }},
    {"DownloadFile", "TQXIP::FTPDownloadFile from '/bad\x01'to 'local' failed!", true,
     [](TQXIP& client, std::uint32_t retries) {
       return client.FTPDownloadFile("/bad\x01", "local", retries);
     }},
    {"UploadFile", "TQXIP::FTPUploadFile from 'local'to '/bad\x01' failed!", true,
     [](TQXIP& client, std::uint32_t retries) { return client.FTPUploadFile("/bad\x01", "local", retries); }},
    {"HasSubDir", "TQXIP::FTPHasSubDir '/a' failed!", false,
     [](TQXIP& client, std::uint32_t retries) { return client.FTPHasSubDir("/a", retries); }},
    {"CountFolderItems", "TQXIP::FTPCountFolderItems '/a' failed!", false,
     [](TQXIP& client, std::uint32_t retries) {
       return client.FTPCountFolderItems("/a", nullptr, nullptr, retries);
     }},
    {"CreateNewDir", "TQXIP::FTPCreateNewDir '' failed!", true,
     [](TQXIP& client, std::uint32_t retries) {
       return client.FTPCreateNewDir(nullptr, nullptr, nullptr, retries);
     }},
};

class SlotRetry : public testing::TestWithParam<Operation> {
 protected:
  QXErrorInfo record{};
  HostSlots host{&record};

  void SetUp() override { host.listsThroughTheLibrary = GetParam().listsThroughTheLibrary; }
};

TEST_P(SlotRetry, CallsTheHostsFunctionWithOneRetryLessEachTime) {
  EXPECT_EQ(GetParam().run(host, 3), 0);
  EXPECT_EQ(host.retries, (Counts{3, 2, 1, 0}));
}

TEST_P(SlotRetry, EveryRunEndsWithItsOwnLine) {
  EXPECT_EQ(GetParam().run(host, 2), 0);
  EXPECT_EQ(host.messagesAfter, std::vector<std::string>(3, GetParam().message));
}

TEST_P(SlotRetry, EveryFailedRunFilesItsOwnReport) {
  host.takesReports = true;
  EXPECT_EQ(GetParam().run(host, 3), 0);
  EXPECT_EQ(host.reports, 4);
}

TEST_P(SlotRetry, TheAnswerOfTheHostsFunctionIsTheResult) {
  host.succeedsFrom = 3;
  EXPECT_EQ(GetParam().run(host, 5), 1);
  EXPECT_EQ(host.retries, (Counts{5, 4, 3}));
}

TEST_P(SlotRetry, WithoutRetriesTheSlotIsNotCalledAgain) {
  EXPECT_EQ(GetParam().run(host, 0), 0);
  EXPECT_EQ(host.retries, (Counts{0}));
}

INSTANTIATE_TEST_SUITE_P(Operations, SlotRetry, testing::ValuesIn(kOperations),
                         [](const auto& instance) { return instance.param.name; });

TEST(SlotRetryReports, ARunOfHasSubDirWhoseRetrySucceedsStillReportsItsOwnFailure) {
  QXErrorInfo record{};
  HostSlots host(&record);
  host.listsThroughTheLibrary = false;
  host.succeedsFrom = 2;
  platform::setLastError(0);
  EXPECT_EQ(host.FTPHasSubDir("/a", 1), 1);
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPHasSubDir '/a' failed!", 4112));
}

TEST(SlotRetryReports, ARunOfCountFolderItemsWhoseRetrySucceedsReportsNothing) {
  QXErrorInfo record{};
  HostSlots host(&record);
  host.listsThroughTheLibrary = false;
  host.succeedsFrom = 2;
  EXPECT_EQ(host.FTPCountFolderItems("/a", nullptr, nullptr, 1), 1);
  EXPECT_TRUE(IsBlank(record));
}

TEST(SlotRetryReports, AClientThatGoesDuringARunIsNotTouchedAgain) {
  QXErrorInfo record{};
  HostSlots host(&record);
  host.listsThroughTheLibrary = false;
  host.goesInAListing = true;
  EXPECT_EQ(host.FTPHasSubDir("/a", 3), 0);
  EXPECT_EQ(host.retries, Counts{3});
  EXPECT_STREQ(host.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
}

// More runs than any stack could hold as nested calls.
constexpr std::uint32_t kManyRetries = 200'000;

TEST(OwnSlot, ManyRetriesOfTheCallersThreadDoNotGrowTheStack) {
  RecordingClient client;
  EXPECT_EQ(client.FTPCountFolderItems(nullptr, nullptr, nullptr, kManyRetries), 0);
  EXPECT_EQ(client.FTPHasSubDir(nullptr, kManyRetries), 0);
}

TEST(OwnSlot, ManyRetriesOfAWorkerDoNotGrowTheStack) {
  TQXIP* client = new TQXIP(nullptr);
  EXPECT_EQ(client->FTPDirExist("/\x01", kManyRetries, 0, 0), 0);
  client->Release();
}

}  // namespace
