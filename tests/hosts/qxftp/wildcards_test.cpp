// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Wildcards.h"

#include <gtest/gtest.h>

#include <string>

using qxftp::matchesWildcards;

TEST(Wildcards, MatchWholeNames) {
  EXPECT_TRUE(matchesWildcards("*.txt", "a.txt"));
  EXPECT_TRUE(matchesWildcards("*.txt", ".txt"));
  EXPECT_FALSE(matchesWildcards("*.txt", "a.txt.old"));
  EXPECT_FALSE(matchesWildcards("*.txt", "A.TXT"));
  EXPECT_TRUE(matchesWildcards("a*b*c", "a-b-b-c"));
  EXPECT_FALSE(matchesWildcards("a*b*c", "a-c-b"));
  EXPECT_TRUE(matchesWildcards("?", "x"));
  EXPECT_FALSE(matchesWildcards("?", ""));
  EXPECT_FALSE(matchesWildcards("?", "xy"));
  EXPECT_TRUE(matchesWildcards("*", ""));
  EXPECT_TRUE(matchesWildcards("", ""));
  EXPECT_FALSE(matchesWildcards("", "a"));
  EXPECT_TRUE(matchesWildcards("**a", "bca"));
}

// On Windows "*.*" means every name; here a name without a dot is none of its.
TEST(Wildcards, TakeADotForADot) {
  EXPECT_TRUE(matchesWildcards("*.*", "a.b"));
  EXPECT_FALSE(matchesWildcards("*.*", "README"));
}

TEST(Wildcards, KnowSets) {
  EXPECT_TRUE(matchesWildcards("part[0-9]", "part7"));
  EXPECT_FALSE(matchesWildcards("part[0-9]", "partx"));
  EXPECT_TRUE(matchesWildcards("[!0-9]*", "x1"));
  EXPECT_FALSE(matchesWildcards("[^0-9]*", "11"));
  EXPECT_TRUE(matchesWildcards("[]a]", "]"));
  EXPECT_TRUE(matchesWildcards("[a-]", "-"));
  EXPECT_TRUE(matchesWildcards("*[.]txt", "a.txt"));
}

TEST(Wildcards, TakeABracketThatIsNeverClosedForItself) {
  EXPECT_TRUE(matchesWildcards("[a", "[a"));
  EXPECT_FALSE(matchesWildcards("[a", "a"));
  EXPECT_TRUE(matchesWildcards("[]", "[]"));
}

TEST(Wildcards, AreNoMoreWorkThanTheTwoLengthsMultiplied) {
  std::string pattern;
  for (int i = 0; i < 500; ++i) pattern += "a*";
  EXPECT_FALSE(matchesWildcards(pattern + "b", std::string(4000, 'a')));
}

TEST(RemotePath, IsSplitAtItsLastSlash) {
  EXPECT_EQ(qxftp::splitPath("/pub/a").folder, "/pub");
  EXPECT_EQ(qxftp::splitPath("/pub/a").name, "a");
  EXPECT_EQ(qxftp::splitPath("/a").folder, "/");
  EXPECT_EQ(qxftp::splitPath("a").folder, ".");
  EXPECT_EQ(qxftp::splitPath("a").name, "a");
  EXPECT_EQ(qxftp::joinedPath("/pub", "a"), "/pub/a");
  EXPECT_EQ(qxftp::joinedPath("/", "a"), "/a");
  EXPECT_EQ(qxftp::joinedPath(".", "a"), "a");
}
