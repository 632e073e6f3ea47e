// SPDX-License-Identifier: MIT
// Paths whose characters need two bytes in the system's code page. The second byte of U+8868 is that of a
// backslash: 0x95 0x5C; such names were once cut in two.
#include <gtest/gtest.h>

#include <string>

#include "framework/platform/code_page.h"
#include "support/Paths.h"

namespace {

const std::string kTable = "\x95\x5C";

class TwoBytePaths : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(platform::narrowCodePage(), 932U) << "the locale that Wine is started with";
  }
};

std::string ftpPath(std::string text) {
  EXPECT_TRUE(ToFtpPath(text.data()));
  return text.c_str();
}

TEST_F(TwoBytePaths, KeepASecondByteThatLooksLikeABackslash) {
  EXPECT_EQ(ftpPath("/" + kTable), "/" + kTable);
  EXPECT_EQ(ftpPath("\\" + kTable + "\\" + kTable + ".txt"), "/" + kTable + "/" + kTable + ".txt");
  EXPECT_EQ(ftpPath(kTable), kTable);
  EXPECT_EQ(ftpPath("/" + kTable + "\\"), "/" + kTable);
}

TEST_F(TwoBytePaths, InUtf8HaveNoSuchByte) {
  EXPECT_EQ(ftpPath("\\\xE8\xA1\xA8\\a"), "/\xE8\xA1\xA8/a");
  EXPECT_EQ(ftpPath("/\xE8\xA1\xA8\\"), "/\xE8\xA1\xA8");
}

TEST_F(TwoBytePaths, AreSplitAtSeparatorsAlone) {
  PathText directory;
  PathText name;
  ASSERT_TRUE(SplitPath(("/" + kTable + "/" + kTable + ".txt").c_str(), &directory, &name, nullptr));
  EXPECT_EQ(directory.c_str(), "/" + kTable);
  EXPECT_EQ(name.c_str(), kTable + ".txt");
  ASSERT_TRUE(SplitPath(("C:\\" + kTable + "\\" + kTable).c_str(), &directory, &name, nullptr));
  EXPECT_EQ(directory.c_str(), "C:\\" + kTable);
  EXPECT_EQ(name.c_str(), kTable);
}

TEST_F(TwoBytePaths, AreTheSameInBothFormsAndDifferInASecondByte) {
  EXPECT_TRUE(EqualNames(("A" + kTable).c_str(), "a\xE8\xA1\xA8"));
  EXPECT_FALSE(EqualNames("\x83\x41", "\x83\x61"));
}

}  // namespace
