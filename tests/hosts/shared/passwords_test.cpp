// SPDX-License-Identifier: MIT
#include "hosts/shared/Passwords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/hosts/shared/FileRights.h"
#include "tests/support/ScratchFolder.h"

class Passwords : public testing::Test {
 protected:
  testing_support::ScratchFolder m_scratch;
  // Nothing is asked: a test has no user.
  hosts::PasswordSources m_sources{.netrc = write("netrc", "machine h login me password netrcs\n"),
                                   .asks = false};

  std::filesystem::path write(const std::string& name, const std::string& text) {
    const std::filesystem::path file = m_scratch.path() / name;
    std::ofstream(file) << text;
    test::makePrivate(file);
    return file;
  }

  // "user/password", or why there is none.
  std::string completed(const std::string& user, const std::string& password = {},
                        const std::string& host = "h") {
    qx::Login login{.host = host, .user = user, .password = password};
    try {
      hosts::completeLogin(login, m_sources);
    } catch (const hosts::NoPassword& problem) {
      return problem.what();
    }
    return login.user + "/" + login.password;
  }
};

TEST_F(Passwords, OfTheAddressCountFirst) { EXPECT_EQ(completed("me", "given"), "me/given"); }

TEST_F(Passwords, ComeFromTheNetrcFile) {
  EXPECT_EQ(completed("me"), "me/netrcs");
  EXPECT_EQ(completed(""), "me/netrcs");
  EXPECT_EQ(completed("me", {}, "ftpes://h;verify=no"), "me/netrcs");
}

TEST_F(Passwords, ComeFromAFileBeforeTheNetrcFile) {
  m_sources.file = write("password", "files\r\nmore\n").string();
  EXPECT_EQ(completed("me"), "me/files");
}

TEST_F(Passwords, NeedATerminalWhereNothingHasThem) {
  EXPECT_THAT(completed("other"), testing::HasSubstr("no password of other at h, and no terminal"));
  m_sources.usesNetrc = false;
  EXPECT_THAT(completed("me"), testing::HasSubstr("no terminal"));
}

TEST_F(Passwords, AreNotAskedOfTheAnonymous) {
  m_sources.usesNetrc = false;
  EXPECT_EQ(completed(""), "anonymous/anonymous@");
  EXPECT_EQ(completed("ftp"), "ftp/anonymous@");
}

TEST_F(Passwords, AreMissingWhereAFileThatWasNamedIs) {
  m_sources.file = m_scratch.file("none");
  EXPECT_THAT(completed("me"), testing::HasSubstr("cannot be read"));
  m_sources.file.clear();
  m_sources.netrc = m_scratch.path() / "none";
  EXPECT_THAT(completed("me"), testing::HasSubstr("cannot be read"));
}
