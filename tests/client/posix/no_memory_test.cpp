// SPDX-License-Identifier: MIT
// A read for which there is no memory.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tests/client/ContentTest.h"
#include "tests/client/SlotHost.h"

namespace {

// From its start on this process gets no more memory than a gibibyte, which is more than it has so far.
class MemoryLimit {
 public:
  void start() {
    EXPECT_EQ(getrlimit(RLIMIT_AS, &m_before), 0);
    const rlimit limit{1u << 30, m_before.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
    m_started = true;
  }
  ~MemoryLimit() {
    if (m_started) setrlimit(RLIMIT_AS, &m_before);
  }
  MemoryLimit() = default;
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;

 private:
  bool m_started = false;
  rlimit m_before{};
};

using NoMemory = ContentTest;

TEST_F(NoMemory, AReadWithoutABlockIsAFailureThatIsTriedAgain) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  MemoryLimit limit;
  host.size = [&, first = true]() mutable {
    if (std::exchange(first, false)) limit.start();
    return 0xFFFFFFFFu;
  };
  void* data = nullptr;
  std::uint32_t size = 0;
  EXPECT_EQ(host.FTPReadFile("/a", &data, &size, 0, 1, 0, 0), 0);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(server.connections().size(), 2u);
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPReadFileThr '/a' failed!", 8u, 9015));
}

}  // namespace
