// SPDX-License-Identifier: MIT
#include "hosts/shared/Names.h"

#include <gtest/gtest.h>

namespace hosts {
namespace {

class NowhereNames : public testing::TestWithParam<const char*> {};

TEST_P(NowhereNames, AreRefusedOnEverySystem) {
  EXPECT_TRUE(whyNotLocal(GetParam(), NameRules::posix));
  EXPECT_TRUE(whyNotLocal(GetParam(), NameRules::windows));
  EXPECT_TRUE(whyNotRemote(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Names, NowhereNames,
                         testing::Values("", ".", "..", "/", "a/b", "../a", "/etc/passwd", "..\\a", "a\\b",
                                         "C:\\a", "\\\\server\\share", "a\nb", "\x1b[2J", "a\x7f"));

class NamesOfOthers : public testing::TestWithParam<const char*> {};

TEST_P(NamesOfOthers, AreRefusedByWindowsAlone) {
  EXPECT_TRUE(whyNotLocal(GetParam(), NameRules::windows));
  EXPECT_FALSE(whyNotLocal(GetParam(), NameRules::posix));
  EXPECT_FALSE(whyNotRemote(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Names, NamesOfOthers,
                         testing::Values("a:b", "C:", "CON", "con.txt", "Nul .tar.gz", "COM1", "lpt9.a",
                                         "aux", "conin$", "a.", "a ", "...", "what?", "a*", "<a>", "a|b",
                                         "\"a\""));

class NamesOfAll : public testing::TestWithParam<const char*> {};

TEST_P(NamesOfAll, AreTaken) {
  EXPECT_FALSE(whyNotLocal(GetParam(), NameRules::windows));
  EXPECT_FALSE(whyNotLocal(GetParam(), NameRules::posix));
}

INSTANTIATE_TEST_SUITE_P(Names, NamesOfAll,
                         testing::Values("a", ".hidden", "..a", "a b", "console", "com", "com10", "COMX",
                                         "aux2", "gr\xC3\xBC\xC3\x9F", "a'b", "[a]", "a%20b"));

TEST(Names, AreTheSameToWindowsInAnyCase) {
  EXPECT_EQ(folded("ReadMe", NameRules::windows), folded("README", NameRules::windows));
  EXPECT_NE(folded("ReadMe", NameRules::posix), folded("README", NameRules::posix));
}

// Names that differ in the case of such letters were two to this program and one to Windows, so that one file
// came in place of the other.
TEST(Names, AreTheSameToWindowsInAnyCaseOfAnyAlphabet) {
  const bool isWindows = namesHere() == NameRules::windows;
  EXPECT_EQ(folded("Gr\xC3\xBC\xC3\x9F/x") == folded("gr\xC3\x9C\xC3\x9F/X"), isWindows);
  EXPECT_EQ(folded("\xCE\xA3") == folded("\xCF\x83"), isWindows);
  EXPECT_NE(folded("\xCE\xA3"), folded("\xCE\xA4"));
}

TEST(Names, ComeApartAndTogether) {
  EXPECT_EQ(joined("/a", "b"), "/a/b");
  EXPECT_EQ(joined("/", "b"), "/b");
  EXPECT_EQ(joined("", "b"), "b");
  EXPECT_EQ(lastPart("/a/b"), "b");
  EXPECT_EQ(lastPart("b"), "b");
  EXPECT_EQ(folderOf("/a/b"), "/a");
  EXPECT_EQ(folderOf("/a"), "/");
  EXPECT_EQ(folderOf("a"), "");
}

// In a program whose code page is UTF-8 a byte that is no text became a character of the far end, U+FFE9.
TEST(Names, OfBytesThatAreNoTextCanBeRead) {
  const std::filesystem::path name = nameFromServer("caf\xE9");
  if (namesHere() == NameRules::windows) {
    EXPECT_EQ(name, std::filesystem::path(u8"caf\u00E9"));
  } else {
    EXPECT_EQ(name.string(), "caf\xE9");
  }
}

TEST(Names, GoToServersAndBack) {
  const std::filesystem::path name(u8"gr\u00fc\u00df \u4e2d.txt");
  EXPECT_EQ(nameFromServer(nameForServer(name)), name);
  EXPECT_EQ(nameForServer("plain.txt"), "plain.txt");
  EXPECT_EQ(pathFromServer(nameForServer(name) + "/plain/" + nameForServer(name)), name / "plain" / name);
  EXPECT_EQ(pathFromServer(""), "");
}

}  // namespace
}  // namespace hosts
