// SPDX-License-Identifier: MIT
// The entry lines of operations whose workers write one of their own at once. A client that goes in the first
// call of OnPoll keeps the line that it had then.
#include <gtest/gtest.h>

#include "Src/MessageLines.h"
#include "Src/RunningOperations.h"
#include "tests/client/RecordingClient.h"

namespace {

struct Entry {
  const char* name;
  const char* line;
  QXBool (*run)(TQXIP& client);
};

std::ostream& operator<<(std::ostream& out, const Entry& entry) { return out << entry.name; }

void* readBlock = nullptr;
std::uint32_t readSize = 0;

const Entry kEntries[] = {
    {"WriteFile", "TQXIP::FTPWriteFile - IN: '/a'",
     [](TQXIP& client) { return client.FTPWriteFile("/a", "x", 1, 0, 0, 0, 0, 0); }},
    {"ReadFile", "TQXIP::FTPReadFile - IN: '/a'",
     [](TQXIP& client) { return client.FTPReadFile("/a", &readBlock, &readSize, 0, 0, 0, 0); }},
    {"CpyFile", "TQXIP::FTPCpyFile - IN: From '/a' to '/b'",
     [](TQXIP& client) { return client.FTPCpyFile("/a", "/b", nullptr, 0, 0, 0); }},
    {"RmvFile", "TQXIP::FTPRmvFile - IN: '/a'",
     [](TQXIP& client) { return client.FTPRmvFile("/a", 0, 0, 0, 0); }},
};

class EntryLine : public testing::TestWithParam<Entry> {};

// The worker may be quicker than the first call of OnPoll; not always.
TEST_P(EntryLine, IsThereBeforeTheWorkersOwn) {
  constexpr int kMostRuns = 20'000;
  RecordingClient client;  // with nobody to connect to
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    RunningOperation::Abandon(client);
    return 0;
  };
  std::string line;
  for (int run = 0; run < kMostRuns && line != GetParam().line; ++run) {
    client.m_szMessage[0] = '\0';
    ASSERT_EQ(GetParam().run(client), 0);
    line = client.m_szMessage;
  }
  EXPECT_EQ(line, GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(Operations, EntryLine, testing::ValuesIn(kEntries),
                         [](const auto& instance) { return instance.param.name; });

// An operation that refuses its arguments goes from its entry line to its failed line without a word to the
// host, so these are shown as they are put together.
TEST(EntryLines, NameNoPathWhereOneIsMissing) {
  RecordingClient client;
  const auto lineOf = [&](const FailureSite& site, const LinePaths& paths) {
    WriteEntryLine(client, site, paths);
    return std::string(client.m_szMessage);
  };
  EXPECT_EQ(lineOf(sites::kWriteFile, {.first = nullptr}), "TQXIP::FTPWriteFile - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kWriteFileThr, {.first = nullptr}), "TQXIP::FTPWriteFileThr - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kReadFile, {.first = nullptr}), "TQXIP::FTPReadFile - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kReadFileThr, {.first = nullptr}), "TQXIP::FTPReadFileThr - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kRmvFile, {.first = nullptr}), "TQXIP::FTPRmvFile - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kRmvFileThr, {.first = nullptr}), "TQXIP::FTPRmvFileThr - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kRmvDir, {.first = nullptr}), "TQXIP::FTPRmvDir - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kRmvDirThr, {.first = nullptr}), "TQXIP::FTPRmvDirThr - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kCreateDir, {.first = nullptr}), "TQXIP::FTPCreateDir - IN: 'NULL'");
  EXPECT_EQ(lineOf(sites::kCreateDirThr, {.first = nullptr}), "TQXIP::FTPCreateDirThr - IN: 'NULL'");
  for (const LinePaths& paths : {LinePaths{.first = nullptr, .second = "/b", .isPair = true},
                                 LinePaths{.first = "/a", .second = nullptr, .isPair = true}}) {
    EXPECT_EQ(lineOf(sites::kCpyFile, paths), "TQXIP::FTPCpyFile - IN: 'NULL'");
    EXPECT_EQ(lineOf(sites::kCpyFileThr, paths), "TQXIP::FTPCpyFileThr - IN: 'NULL'");
  }
}

}  // namespace
