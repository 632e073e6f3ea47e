// SPDX-License-Identifier: MIT
#include "hosts/shared/PrivateFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "hosts/shared/Passwords.h"
#include "tests/support/ScratchFolder.h"

using std::filesystem::perms;

class PrivateFile : public testing::Test {
 protected:
  PrivateFile() { std::ofstream(m_file) << "machine h login me password secret\n"; }

  void let(perms rights) const { std::filesystem::permissions(m_file, rights); }

  const testing_support::ScratchFolder m_scratch;
  const std::filesystem::path m_file = m_scratch.path() / "netrc";
};

TEST_F(PrivateFile, IsForItsOwnerAlone) {
  let(perms::owner_read);
  EXPECT_TRUE(hosts::isPrivate(m_file));
  for (const perms others : {perms::group_read, perms::others_read, perms::group_write}) {
    let(perms::owner_read | others);
    EXPECT_FALSE(hosts::isPrivate(m_file));
  }
}

TEST_F(PrivateFile, IsNoQuestionForAPipe) { EXPECT_TRUE(hosts::isPrivate("/dev/null")); }

TEST_F(PrivateFile, IsWhatAFileOfPasswordsHasToBe) {
  let(perms::owner_read | perms::others_read);
  qx::Login login{.host = "h", .user = "me", .password = {}};
  try {
    hosts::completeLogin(login, {.netrc = m_file, .asks = false});
    ADD_FAILURE() << "taken from a file that others may read";
  } catch (const hosts::NoPassword& problem) {
    EXPECT_THAT(problem.what(), testing::HasSubstr("chmod 600"));
    EXPECT_THAT(problem.what(), testing::Not(testing::HasSubstr("secret")));
  }
}

TEST_F(PrivateFile, IsTheNetrcOfTheHome) {
  const std::string before = std::getenv("HOME");
  setenv("HOME", m_scratch.path().c_str(), 1);
  EXPECT_EQ(hosts::usualNetrc(), m_scratch.path() / ".netrc");
  unsetenv("HOME");
  EXPECT_TRUE(hosts::usualNetrc().empty());
  setenv("HOME", before.c_str(), 1);
}
