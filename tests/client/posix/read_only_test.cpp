// SPDX-License-Identifier: MIT
// Downloads and copies into a folder that the user may not write.
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/client/TransferTest.h"

namespace {

using std::filesystem::perms;

// Nobody's rights instead of the superuser's, whom no permission stops.
class PlainUser {
 public:
  PlainUser() : m_before(geteuid()) {
    if (m_before != 0) return;
    EXPECT_EQ(seteuid(65534), 0);
  }
  ~PlainUser() {
    if (m_before != 0) return;
    EXPECT_EQ(seteuid(m_before), 0);
  }
  PlainUser(const PlainUser&) = delete;
  PlainUser& operator=(const PlainUser&) = delete;

 private:
  const uid_t m_before;
};

class ReadOnly : public TransferTest {
 protected:
  static constexpr perms kReadOnly = perms::owner_read | perms::owner_exec | perms::group_read |
                                     perms::group_exec | perms::others_read | perms::others_exec;

  const fixture::ScriptedFtp server{R"({"tree": {"/a": "one"}})"};

  void SetUp() override {
    loginAt(server);
    std::filesystem::permissions(folder.path(), kReadOnly);
  }
  void TearDown() override { std::filesystem::permissions(folder.path(), perms::owner_all); }
};

TEST_F(ReadOnly, AFolderTakesNoDownload) {
  {
    const PlainUser rights;
    EXPECT_EQ(download("/a", 1), 0);
  }
  EXPECT_FALSE(exists());
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_THAT(record,
              ReportsLastError("TQXIP::FTPDownloadFile from '/a'to '" + local + "' failed!", 5u, 3841));
}

TEST_F(ReadOnly, AFolderTakesNoCopy) {
  const std::string target = testing_support::localName(local);
  {
    const PlainUser rights;
    EXPECT_EQ(client.FTPCpyFile("/a", target.c_str(), nullptr, 1, 0, 0), 0);
  }
  EXPECT_FALSE(exists());
  EXPECT_THAT(record,
              ReportsLastError("TQXIP::FTPCpyFileThr from '/a' to '" + target + "' failed!", 5u, 6082));
}

TEST_F(ReadOnly, AFileIsNotReplacedByACopy) {
  std::filesystem::permissions(folder.path(), perms::owner_all);
  write("mine");
  std::filesystem::permissions(local, perms::owner_read | perms::group_read | perms::others_read);
  std::filesystem::permissions(folder.path(), kReadOnly);
  const std::string target = testing_support::localName(local);
  {
    const PlainUser rights;
    EXPECT_EQ(client.FTPCpyFile("/a", target.c_str(), nullptr, 0, 0, 0), 0);
  }
  EXPECT_EQ(content(), "mine");
  EXPECT_THAT(record,
              ReportsLastError("TQXIP::FTPCpyFileThr from '/a' to '" + target + "' failed!", 5u, 6082));
}

TEST_F(ReadOnly, AFileThatMayNotBeReadIsNotUploaded) {
  std::filesystem::permissions(folder.path(), perms::owner_all);
  write("mine");
  std::filesystem::permissions(local, perms::none);
  std::filesystem::permissions(folder.path(), kReadOnly);
  {
    const PlainUser rights;
    EXPECT_EQ(upload("/b"), 0);
  }
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPUploadFile from '" + local + "'to '/b' failed!", 5u, 4004));
}

}  // namespace
