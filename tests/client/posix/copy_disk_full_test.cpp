// SPDX-License-Identifier: MIT
// Copies and appends that the local disk cannot take whole.
#include <fstream>

#include "tests/client/ContentTest.h"
#include "tests/client/SlotHost.h"
#include "tests/client/posix/FileSizeLimit.h"

namespace {

constexpr std::uint32_t kFileTooLarge = 223;

class CopyDiskFull : public ContentTest {
 protected:
  const fixture::ScriptedFtp server{R"({"tree": {"/a": {"size": 1048576}}})"};
  const std::string target = localName(local);

  void SetUp() override { loginAt(server); }
  QXBool copy(const std::string& to, std::uint32_t retries) {
    const FileSizeLimit limit(65536);
    return client.FTPCpyFile("/a", to.c_str(), nullptr, retries, 0, 0);
  }
};

TEST_F(CopyDiskFull, ACopyToTheDiskFailsWithTheSystemsError) {
  EXPECT_EQ(copy(target, 1), 0);
  EXPECT_EQ(server.commandCount("RETR"), 2);
  EXPECT_EQ(client.count("OnIPError 223 "), 2u);
  EXPECT_EQ(record.nError, kFileTooLarge);
  EXPECT_THAT(std::string(record.szText), testing::HasSubstr(SystemText(kFileTooLarge)));
  server.waitUntilAllClosed();
}

TEST_F(CopyDiskFull, OnIPErrorGetsTheRetryCounter) {
  EXPECT_EQ(copy(target, 1), 0);
  EXPECT_EQ(client.count("OnIPError"), 2u);
  std::string counters;
  for (const std::string& call : client.calls()) {
    if (call.starts_with("OnIPError")) counters += call.substr(call.find(" retries "));
  }
  EXPECT_EQ(counters, " retries 1 retries 0");
}

TEST_F(CopyDiskFull, ACopyOnTheServerFailsAndLeavesNoTemporaryFile) {
  EXPECT_EQ(copy("/b", 0), 0);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_EQ(leftInTemporary(), Names{});
  EXPECT_EQ(record.nError, kFileTooLarge);
}

TEST_F(CopyDiskFull, AnAppendFailsWithTheSystemsErrorAndUploadsNothing) {
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.download = [this](const std::string&, const std::string&) -> QXBool {
    std::ofstream(temporaryFile("a")) << "old";
    return 1;
  };
  host.upload = [](const std::string&, const std::string&) { return QXBool{1}; };
  const std::string data = patternText(100'000);
  {
    const FileSizeLimit limit(65536);
    EXPECT_EQ(host.FTPWriteFile("/a", data.data(), 100'000, 1, 0, 0, 0, 0), 0);
  }
  EXPECT_EQ(host.calls().size(), 2u) << "no upload";
  EXPECT_EQ(record.nError, kFileTooLarge);
  EXPECT_EQ(leftInTemporary(), Names{});
}

}  // namespace
