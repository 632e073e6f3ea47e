// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Printable.h"

#include <gtest/gtest.h>

using qxftp::printable;

TEST(Printable, LeavesNamesOfAllScriptsAlone) {
  for (const char* name : {"readme.txt", "a b", "gr\xc3\xbc\xc3\x9f", "\xe6\x97\xa5\xe6\x9c\xac",
                           "\xf0\x9f\x90\x9f", "back\\slash"}) {
    EXPECT_EQ(printable(name), name);
  }
}

TEST(Printable, EscapesWhatMovesTheCursor) {
  EXPECT_EQ(printable("a\nb\tc\r"), "a\\nb\\tc\\x0d");
  EXPECT_EQ(printable("\x1b[2J"), "\\x1b[2J");
  EXPECT_EQ(printable("\x7f"), "\\x7f");
  EXPECT_EQ(printable("\xc2\x9b"
                      "2J"),
            "\\xc2\\x9b2J");
}

TEST(Printable, EscapesWhatTurnsTheDirectionOfWriting) {
  EXPECT_EQ(printable("a\xe2\x80\xae"
                      "gpj.exe"),
            "a\\xe2\\x80\\xaegpj.exe");
  EXPECT_EQ(printable("\xe2\x80\xa8"), "\\xe2\\x80\\xa8");
}

TEST(Printable, EscapesBytesThatAreNoUtf8) {
  EXPECT_EQ(printable("caf\xe9"), "caf\\xe9");
  EXPECT_EQ(printable("\xc3"), "\\xc3");
  EXPECT_EQ(printable("\xc0\xaf"), "\\xc0\\xaf");
  EXPECT_EQ(printable("\xe0\x80\xaf"), "\\xe0\\x80\\xaf");
  EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
  EXPECT_EQ(printable("\xff"
                      "a"),
            "\\xffa");
}
