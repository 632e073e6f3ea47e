// SPDX-License-Identifier: MIT
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string ftpPath(std::string text) {
  EXPECT_TRUE(ToFtpPath(text.data()));
  return text.c_str();
}

struct Trimmed {
  bool remains;
  std::string text;
  bool operator==(const Trimmed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Trimmed& trimmed) {
  return out << (trimmed.remains ? "true" : "false") << ", '" << trimmed.text << "'";
}

Trimmed trimmed(std::string text) {
  const bool remains = TrimSlashes(text.data());
  return {remains, text.c_str()};
}

struct Parts {
  bool given;
  std::string directory, fileName, extension;
  bool operator==(const Parts&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Parts& parts) {
  return out << parts.given << " '" << parts.directory << "' '" << parts.fileName << "' '" << parts.extension
             << "'";
}

Parts split(const char* path) {
  PathText directory;
  PathText fileName;
  PathText extension;
  static_cast<void>(directory.assign("old"));
  static_cast<void>(fileName.assign("old"));
  static_cast<void>(extension.assign("old"));
  const bool given = SplitPath(path, &directory, &fileName, &extension);
  return {given, directory.c_str(), fileName.c_str(), extension.c_str()};
}

TEST(ToFtpPath, TurnsBackslashesIntoSlashesAndDropsTheTrailingOne) {
  EXPECT_EQ(ftpPath("\\pub\\data\\"), "/pub/data");
}

TEST(ToFtpPath, KeepsAPathThatIsAnFtpPathAlready) { EXPECT_EQ(ftpPath("/pub/data.txt"), "/pub/data.txt"); }

TEST(ToFtpPath, DropsOneTrailingSlash) {
  EXPECT_EQ(ftpPath("/pub/"), "/pub");
  EXPECT_EQ(ftpPath("pub/"), "pub");
}

TEST(ToFtpPath, DropsOnlyOneOfSeveralTrailingSlashes) { EXPECT_EQ(ftpPath("/pub//"), "/pub/"); }

TEST(ToFtpPath, MakesADoubledLeadingSlashOne) {
  EXPECT_EQ(ftpPath("//pub"), "/pub");
  EXPECT_EQ(ftpPath("\\\\pub"), "/pub");
  EXPECT_EQ(ftpPath("\\/pub"), "/pub");
}

TEST(ToFtpPath, LeavesTwoOfThreeLeadingSlashes) { EXPECT_EQ(ftpPath("///pub"), "//pub"); }

TEST(ToFtpPath, AOneLetterFirstComponentLosesItsLetter) {
  EXPECT_EQ(ftpPath("a/b"), "/b");
  EXPECT_EQ(ftpPath("a\\b\\"), "/b");
}

TEST(ToFtpPath, EverySpellingOfTheRootIsASlash) {
  EXPECT_EQ(ftpPath("/"), "/");
  EXPECT_EQ(ftpPath("\\"), "/");
  EXPECT_EQ(ftpPath("//"), "/");
  EXPECT_EQ(ftpPath("\\\\"), "/");
}

TEST(ToFtpPath, NothingHappensToAnEmptyText) { EXPECT_EQ(ftpPath(""), ""); }

TEST(ToFtpPath, NullIsTrue) { EXPECT_TRUE(ToFtpPath(nullptr)); }

TEST(ToFtpPath, KeepsBytesOutsideAscii) { EXPECT_EQ(ftpPath("\\gr\xc3\xbc\xdf"), "/gr\xc3\xbc\xdf"); }

TEST(TrimSlashes, NullAndEmptyAreFalse) {
  EXPECT_FALSE(TrimSlashes(nullptr));
  EXPECT_EQ(trimmed(""), (Trimmed{false, ""}));
}

TEST(TrimSlashes, TheRootStays) { EXPECT_EQ(trimmed("/"), (Trimmed{true, "/"})); }

TEST(TrimSlashes, ALoneBackslashBecomesEmptyAndFalse) { EXPECT_EQ(trimmed("\\"), (Trimmed{false, ""})); }

TEST(TrimSlashes, DropsASingleLeadingBackslash) { EXPECT_EQ(trimmed("\\pub"), (Trimmed{true, "pub"})); }

TEST(TrimSlashes, KeepsTwoLeadingBackslashes) {
  EXPECT_EQ(trimmed("\\\\server"), (Trimmed{true, "\\\\server"}));
}

TEST(TrimSlashes, KeepsALeadingSlash) { EXPECT_EQ(trimmed("/pub"), (Trimmed{true, "/pub"})); }

TEST(TrimSlashes, DropsOneTrailingSeparator) {
  EXPECT_EQ(trimmed("/pub/"), (Trimmed{true, "/pub"}));
  EXPECT_EQ(trimmed("pub\\"), (Trimmed{true, "pub"}));
  EXPECT_EQ(trimmed("pub//"), (Trimmed{true, "pub/"}));
}

TEST(TrimSlashes, OfTwoBackslashesOneRemains) { EXPECT_EQ(trimmed("\\\\"), (Trimmed{true, "\\"})); }

TEST(TrimSlashes, DropsALeadingAndATrailingBackslash) {
  EXPECT_EQ(trimmed("\\pub\\"), (Trimmed{true, "pub"}));
}

TEST(TrimSlashes, ABackslashBeforeASlashLeavesTheRoot) { EXPECT_EQ(trimmed("\\/"), (Trimmed{true, "/"})); }

TEST(SplitPath, SplitsAnFtpPath) { EXPECT_EQ(split("/pub/a.txt"), (Parts{true, "/pub", "a.txt", ".txt"})); }

TEST(SplitPath, TheDirectoryOfATopLevelNameIsTheRoot) {
  EXPECT_EQ(split("/data"), (Parts{true, "/", "data", ""}));
}

TEST(SplitPath, ABareNameHasNoDirectory) { EXPECT_EQ(split("a.txt"), (Parts{true, "", "a.txt", ".txt"})); }

TEST(SplitPath, TheDriveIsPartOfTheDirectory) {
  EXPECT_EQ(split("C:\\dir\\a.txt"), (Parts{true, "C:\\dir", "a.txt", ".txt"}));
  EXPECT_EQ(split("C:a.txt"), (Parts{true, "C:", "a.txt", ".txt"}));
}

TEST(SplitPath, AcceptsBothSeparatorsMixed) {
  EXPECT_EQ(split("/pub\\x/b.c"), (Parts{true, "/pub\\x", "b.c", ".c"}));
}

TEST(SplitPath, ADirectoryThatStartsWithOneBackslashLosesIt) {
  EXPECT_EQ(split("\\pub\\a"), (Parts{true, "pub", "a", ""}));
}

TEST(SplitPath, TheExtensionStartsAtTheLastDot) {
  EXPECT_EQ(split("/a.tar.gz"), (Parts{true, "/", "a.tar.gz", ".gz"}));
}

TEST(SplitPath, ADotInADirectoryMakesNoExtension) {
  EXPECT_EQ(split("/pub.d/name"), (Parts{true, "/pub.d", "name", ""}));
}

TEST(SplitPath, ANameThatBeginsWithItsOnlyDotIsAllExtension) {
  EXPECT_EQ(split("/.profile"), (Parts{true, "/", ".profile", ".profile"}));
}

TEST(SplitPath, ATrailingSeparatorLeavesNoName) {
  EXPECT_EQ(split("/pub/data/"), (Parts{true, "/pub/data", "", ""}));
}

TEST(SplitPath, ADotAtTheEndIsAnExtension) { EXPECT_EQ(split("name."), (Parts{true, "", "name.", "."})); }

TEST(SplitPath, NullGivesFalseAndEmptyParts) { EXPECT_EQ(split(nullptr), (Parts{false, "", "", ""})); }

TEST(SplitPath, EveryOutputMayBeNull) {
  EXPECT_TRUE(SplitPath("/pub/a.txt", nullptr, nullptr, nullptr));
  PathText name;
  EXPECT_TRUE(SplitPath("/pub/a.txt", nullptr, &name, nullptr));
  EXPECT_STREQ(name.c_str(), "a.txt");
}

TEST(SplitPath, Splits4095CharactersAndRefuses4096) {
  const std::string name(4090, 'n');
  EXPECT_EQ(split(("/pub/" + name).c_str()), (Parts{true, "/pub", name, ""}));
  EXPECT_EQ(split(("/pub/x" + name).c_str()), (Parts{false, "", "", ""}));
}

TEST(IsRemotePath, NullAndEmptyAreLocal) {
  EXPECT_FALSE(IsRemotePath(nullptr));
  EXPECT_FALSE(IsRemotePath(""));
}

TEST(IsRemotePath, TheRootIsTheOnlyRemotePathOfOneCharacter) {
  EXPECT_TRUE(IsRemotePath("/"));
  EXPECT_FALSE(IsRemotePath("\\"));
  EXPECT_FALSE(IsRemotePath("a"));
}

TEST(IsRemotePath, ADrivePathIsLocal) {
  EXPECT_FALSE(IsRemotePath("C:\\a"));
  EXPECT_FALSE(IsRemotePath("z:/a"));
  EXPECT_FALSE(IsRemotePath("C:"));
}

TEST(IsRemotePath, APathBehindTwoBackslashesIsLocal) { EXPECT_FALSE(IsRemotePath("\\\\server\\share")); }

TEST(IsRemotePath, EverythingElseIsRemote) {
  EXPECT_TRUE(IsRemotePath("/a"));
  EXPECT_TRUE(IsRemotePath("\\a"));
  EXPECT_TRUE(IsRemotePath("pub/a"));
  EXPECT_TRUE(IsRemotePath("//a"));
}

TEST(IsSafeRemotePath, TakesUpTo4095Characters) {
  EXPECT_TRUE(IsSafeRemotePath(""));
  EXPECT_TRUE(IsSafeRemotePath(std::string(4095, 'a').c_str()));
  EXPECT_FALSE(IsSafeRemotePath(std::string(4096, 'a').c_str()));
}

TEST(IsSafeRemotePath, RefusesEveryControlCharacter) {
  for (int code = 1; code < 0x20; ++code) {
    const std::string path = std::string("/a") + static_cast<char>(code) + "b";
    EXPECT_FALSE(IsSafeRemotePath(path.c_str())) << "character " << code;
  }
  EXPECT_FALSE(IsSafeRemotePath("/a\x7f"));
}

TEST(IsSafeRemotePath, TakesBlanksAndBytesOutsideAscii) {
  EXPECT_TRUE(IsSafeRemotePath("/a b"));
  EXPECT_TRUE(IsSafeRemotePath("/\x80\xff\xa0"));
}

TEST(EqualNames, IgnoresTheCaseOfAsciiLetters) {
  EXPECT_TRUE(EqualNames("PuB", "pUb"));
  EXPECT_TRUE(EqualNames("", ""));
}

TEST(EqualNames, TellsPrefixesAndOtherCharactersApart) {
  EXPECT_FALSE(EqualNames("pub", "pub1"));
  EXPECT_FALSE(EqualNames("pub1", "pub"));
  EXPECT_FALSE(EqualNames("[", "{"));
  EXPECT_FALSE(EqualNames("@", "`"));
}

TEST(EqualNames, ComparesBytesOutsideAsciiAsTheyAre) {
  EXPECT_TRUE(EqualNames("\xfc", "\xfc"));
  EXPECT_FALSE(EqualNames("\xfc", "\xdc"));
}

}  // namespace
