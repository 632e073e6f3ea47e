// SPDX-License-Identifier: MIT
// A download that the local disk cannot take whole.
#include "tests/client/TransferTest.h"
#include "tests/client/posix/FileSizeLimit.h"

namespace {

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
  EXPECT_THAT(record,
              ReportsLastError("TQXIP::FTPDownloadFile from '/a'to '" + local + "' failed!", 223u, 3841));
}

}  // namespace
