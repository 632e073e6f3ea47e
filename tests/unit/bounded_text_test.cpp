// SPDX-License-Identifier: MIT
#include "support/BoundedText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using FourText = BoundedText<5>;

TEST(BoundedText, StartsEmpty) {
  const FourText text;
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.size(), 0u);
  EXPECT_STREQ(text.c_str(), "");
}

TEST(BoundedText, HoldsATextOfItsCapacityLessTheTerminator) {
  FourText text;
  EXPECT_TRUE(text.assign("abcd"));
  EXPECT_STREQ(text.c_str(), "abcd");
  EXPECT_EQ(text.size(), 4u);
}

TEST(BoundedText, RefusesATextThatIsOneCharacterTooLongAndIsEmptyThen) {
  FourText text;
  ASSERT_TRUE(text.assign("ab"));
  EXPECT_FALSE(text.assign("abcde"));
  EXPECT_TRUE(text.empty());
}

TEST(BoundedText, RefusesNullAndIsEmptyThen) {
  FourText text;
  ASSERT_TRUE(text.assign("ab"));
  EXPECT_FALSE(text.assign(nullptr));
  EXPECT_TRUE(text.empty());
}

TEST(BoundedText, AppendsUpToItsCapacity) {
  FourText text;
  EXPECT_TRUE(text.append("ab"));
  EXPECT_TRUE(text.append("cd"));
  EXPECT_TRUE(text.append(""));
  EXPECT_STREQ(text.c_str(), "abcd");
}

TEST(BoundedText, APieceThatDoesNotFitLeavesItEmptyRatherThanCut) {
  FourText text;
  ASSERT_TRUE(text.append("abc"));
  EXPECT_FALSE(text.append("de"));
  EXPECT_TRUE(text.empty());
}

TEST(BoundedText, APathTextHolds4095CharactersAndRefuses4096) {
  PathText path;
  EXPECT_TRUE(path.assign(std::string(4095, 'p').c_str()));
  EXPECT_EQ(path.size(), 4095u);
  EXPECT_FALSE(path.assign(std::string(4096, 'p').c_str()));
}

}  // namespace
