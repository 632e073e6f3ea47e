// SPDX-License-Identifier: MIT
#include "hosts/shared/PrivateFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "hosts/shared/Passwords.h"
#include "tests/hosts/shared/FileRights.h"
#include "tests/support/ScratchFolder.h"

class PrivateFile : public testing::Test {
 protected:
  PrivateFile() { std::ofstream(m_file) << "machine h login me password secret\ndefault login anonymous\n"; }

  const testing_support::ScratchFolder m_scratch;
  const std::filesystem::path m_file = m_scratch.path() / "netrc";
};

TEST_F(PrivateFile, IsForItsOwnerAlone) {
  test::makePrivate(m_file);
  EXPECT_TRUE(hosts::isPrivate(m_file));
  test::letOthersRead(m_file);
  EXPECT_FALSE(hosts::isPrivate(m_file));
  EXPECT_FALSE(hosts::isPrivate(m_scratch.path() / "none"));
}

TEST_F(PrivateFile, IsWhatAFileOfPasswordsHasToBe) {
  test::letOthersRead(m_file);
  qx::Login login{.host = "h", .user = "me", .password = {}};
  try {
    hosts::completeLogin(login, {.netrc = m_file, .asks = false});
    ADD_FAILURE() << "taken from a file that others may read";
  } catch (const hosts::NoPassword& problem) {
    EXPECT_THAT(problem.what(), testing::HasSubstr("others may read it: "));
    EXPECT_THAT(problem.what(), testing::Not(testing::HasSubstr("secret")));
  }
}

TEST_F(PrivateFile, NeedNotBeWhatHasNoSecretForTheHost) {
  test::letOthersRead(m_file);
  qx::Login login{.host = "other", .user = {}, .password = {}};
  hosts::completeLogin(login, {.netrc = m_file, .asks = false});
  EXPECT_EQ(login.user, "anonymous");
}
