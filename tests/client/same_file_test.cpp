// SPDX-License-Identifier: MIT
// Which remote paths may name one file.
#include <gtest/gtest.h>

#include "Src/SameFile.h"

namespace {

struct Pair {
  const char* first;
  const char* second;
};

TEST(MayBeSameFile, KnowsTheSpellingsOfOnePath) {
  for (const auto& [first, second] : {Pair{"/a", "/a"},
                                      {"/a", "\\a"},
                                      {"/a", "//a"},
                                      {"/a/", "/a"},
                                      {"/pub/a.txt", "/PUB/A.txt"},
                                      {"/pub//a", "/pub/a"},
                                      {"/pub/./a", "/pub/a"},
                                      {"/pub/x/../a", "/pub/a"},
                                      {"/../a", "/a"},
                                      {"/a.", "/a"},
                                      {"/a .", "/a"},
                                      {"/pub/a", "a"},
                                      {"pub/a", "/home/me/pub/a"},
                                      {"./name", "name"}}) {
    EXPECT_TRUE(MayBeSameFile(first, second)) << first << " and " << second;
    EXPECT_TRUE(MayBeSameFile(second, first)) << second << " and " << first;
  }
}

TEST(MayBeSameFile, TellsOtherPathsApart) {
  for (const auto& [first, second] : {Pair{"/a", "/b"},
                                      {"/a", "/a1"},
                                      {"/pub/a", "/a"},
                                      {"/pub/a", "/sub/a"},
                                      {"/a/a", "/a"},
                                      {"pub/a", "sub/a"},
                                      {"name", "pub/name"},
                                      {"/name", "pub/name"},
                                      {"/.a", "/a"},
                                      {"/\xc3\xa4", "/\xc3\xb6"},
                                      {"", "/a"}}) {
    EXPECT_FALSE(MayBeSameFile(first, second)) << first << " and " << second;
    EXPECT_FALSE(MayBeSameFile(second, first)) << second << " and " << first;
  }
}

}  // namespace
