// SPDX-License-Identifier: MIT
#include "hosts/shared/Netrc.h"

#include <gtest/gtest.h>

using hosts::findInNetrc;

namespace {

constexpr const char* kFile = R"(# a comment
machine one.example login me password secret
machine two.example
  login "a b" password "x\"y\\z" account none
macdef init
  machine trap.example login wrong password wrong

machine one.example login other password second
machine three.example password "nobody's"
default login anonymous password me@example.org
)";

std::string passwordOf(const char* host, const char* user) {
  const auto found = findInNetrc(kFile, host, user);
  return found ? found->user + "/" + found->password : "none";
}

}  // namespace

TEST(Netrc, IsSearchedByHostAndUser) {
  EXPECT_EQ(passwordOf("one.example", ""), "me/secret");
  EXPECT_EQ(passwordOf("ONE.example", "me"), "me/secret");
  EXPECT_EQ(passwordOf("one.example", "other"), "other/second");
  EXPECT_EQ(passwordOf("three.example", "me"), "me/nobody's");
}

TEST(Netrc, MayHaveWordsInQuotationMarks) { EXPECT_EQ(passwordOf("two.example", ""), "a b/x\"y\\z"); }

// A password with a "#" in front was a comment, and the next line the password.
TEST(Netrc, HasCommentsBetweenItsLinesAlone) {
  const char* const file =
      "machine h login #me password #secret # a comment\nmachine other login x password y";
  EXPECT_EQ(findInNetrc(file, "h", "")->user, "#me");
  EXPECT_EQ(findInNetrc(file, "h", "")->password, "#secret");
  EXPECT_EQ(findInNetrc(file, "other", "")->password, "y");
}

TEST(Netrc, HasADefaultAtItsEnd) {
  EXPECT_EQ(passwordOf("other.example", ""), "anonymous/me@example.org");
  EXPECT_EQ(passwordOf("other.example", "me"), "none");
}

TEST(Netrc, HasMacrosThatAreSkipped) {
  EXPECT_EQ(passwordOf("trap.example", ""), "anonymous/me@example.org");
}

TEST(Netrc, MayEndAnywhere) {
  EXPECT_FALSE(findInNetrc("", "h", "").has_value());
  EXPECT_FALSE(findInNetrc("machine", "h", "").has_value());
  EXPECT_TRUE(findInNetrc("machine h login", "h", "").has_value());
  EXPECT_EQ(findInNetrc("machine h login u password \"open", "h", "")->password, "open");
  EXPECT_FALSE(findInNetrc("machine x macdef init\nmachine h", "h", "").has_value());
}
