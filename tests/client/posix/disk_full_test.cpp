// SPDX-License-Identifier: MIT
// A download that the local disk cannot take whole. The limit on file sizes stands in for a full disk.
#include <sys/resource.h>

#include <csignal>

#include "tests/client/TransferTest.h"

namespace {

// No file of this process grows beyond `bytes` while the object lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &m_before), 0);
    const rlimit limit{bytes, m_before.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*m_handler)(int);
  rlimit m_before{};
};

using DiskFull = TransferTest;

TEST_F(DiskFull, ADownloadThatDoesNotFitFailsAndLeavesNoFile) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": {"size": 1048576}}})");
  loginAt(server);
  {
    const FileSizeLimit limit(65536);
    EXPECT_EQ(download("/a", 1), 0);
  }
  EXPECT_FALSE(exists());
  EXPECT_EQ(server.commandCount("RETR"), 2);
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPDownloadFile from '/a'to '" + local + "' failed!", 3841));
}

}  // namespace
