// SPDX-License-Identifier: MIT
// What a long listing takes of memory, over a network in memory.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Src/EntryArray.h"
#include "tests/client/PlainClient.h"
#include "tests/support/AllocationWatch.h"
#include "tests/support/MemoryFtp.h"

namespace {

using testing_support::MemoryFtp;
using testing_support::MemoryLink;

constexpr std::uint32_t kRows = 100'000;

std::string manyRows() {
  std::string text;
  for (std::uint32_t i = 0; i < kRows; ++i) {
    text += "-rw-r--r-- 1 owner group " + std::to_string(i) + " Jan 12 10:05 file" + std::to_string(i) +
            ".dat\r\n";
  }
  return text;
}

// The text, the entries as they were read and those for the host used to stand in memory side by side, all of
// them whole.
TEST(ListingMemory, EntriesAreHeldOnceAndLittleElse) {
  std::string text = manyRows();
  MemoryFtp server;
  testing_support::MemoryNetwork network(server);
  server.answers["LIST"] = "150 Here\r\n226 Done\r\n";
  server.onCommand = [&](const std::string& line) {
    if (line != "LIST") return;
    server.data->toClient = std::move(text);
    server.data->server = MemoryLink::End::ended;
  };
  QXErrorInfo record{};
  PlainClient client(&record);
  client.FTPSetLogin("127.0.0.1", "user", "password", 21, 1);
  std::uint32_t count = 0;
  const testing_support::MostBytesHeld held;
  ASSERT_EQ(client.FTPGetDirectory("/many", nullptr, &count, "*", 0), 1u);
  EXPECT_EQ(count, kRows);
  const auto entries = static_cast<long>(EntryCapacity(kRows) * sizeof(QXDirEntry));
  EXPECT_GE(held.beyond(), entries);
  EXPECT_LT(held.beyond() - entries, 4 << 20);
  EXPECT_EQ(EntryCount(client.m_pFileBuffer), kRows);
  EXPECT_STREQ(client.m_pFileBuffer[kRows - 1].szName, "file99999.dat");
}

}  // namespace
