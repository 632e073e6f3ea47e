// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Names.h"

#include <gtest/gtest.h>

#include "hosts/qxbrowse/ui/TextQuestion.h"

namespace {

using namespace browse;

TEST(ANameOfTheLibrary, GoesThereAndBack) {
  const std::string names[] = {"", "plain", "caf\xC3\xA9", "\xF0\x9F\x98\x80 \xE2\x82\xAC"};
  for (const std::string& name : names) {
    const std::wstring wide = fromLibrary(name);
    EXPECT_EQ(fromLibrary(toLibrary(wide)), wide) << name;
  }
  EXPECT_EQ(fromLibrary("caf\xC3\xA9"), L"caf\u00E9");
  EXPECT_EQ(fromLibrary("\xF0\x9F\x98\x80"), L"\xD83D\xDE00");
}

TEST(ANameOfTheLibrary, KeepsItsBytesWhereTheyAreNoText) {
  if (GetACP() != CP_UTF8) GTEST_SKIP() << "the code page knows what each byte is";
  const std::string odd =
      "a\xE9\xFF"
      "b\xC3";
  EXPECT_EQ(fromLibrary(odd),
            L"a\xDCE9\xDCFF"
            L"b\xDCC3");
  EXPECT_EQ(toLibrary(fromLibrary(odd)), odd);
}

TEST(ANameOfTheLibrary, IsInUtf8WhereTheCodePageLacksIt) {
  EXPECT_EQ(toLibrary(L"\u4E2D\u6587"), "\xE4\xB8\xAD\xE6\x96\x87");
}

TEST(APathOnTheServer, IsJoinedAndTakenApart) {
  EXPECT_EQ(serverPath(L"/", L"a"), L"/a");
  EXPECT_EQ(serverPath(L"/a", L"b"), L"/a/b");
  EXPECT_EQ(serverPath(L"", L"b"), L"/b");
  EXPECT_EQ(serverParent(L"/a/b"), L"/a");
  EXPECT_EQ(serverParent(L"/a/"), L"/");
  EXPECT_EQ(serverParent(L"/a"), L"/");
  EXPECT_EQ(serverParent(L"/"), L"/");
  EXPECT_EQ(lastPart(L"/a/b"), L"b");
  EXPECT_EQ(lastPart(L"/"), L"");
}

TEST(ALocalPath, IsJoinedAndTakenApart) {
  EXPECT_EQ(localPath(L"C:\\", L"a"), L"C:\\a");
  EXPECT_EQ(localPath(L"C:\\a", L"b"), L"C:\\a\\b");
  EXPECT_EQ(localPath(L"", L"C:\\"), L"C:\\") << "in the list of drives";
  EXPECT_EQ(localParent(L"C:\\a\\b"), L"C:\\a");
  EXPECT_EQ(localParent(L"C:\\a\\b\\"), L"C:\\a");
  EXPECT_EQ(localParent(L"C:\\a"), L"C:\\");
  EXPECT_EQ(localParent(L"C:\\"), L"") << "the drives";
  EXPECT_EQ(localParent(L"\\\\host\\share\\a"), L"\\\\host\\share");
  EXPECT_EQ(localParent(L"\\\\host\\share"), L"");
  EXPECT_EQ(lastPart(L"C:\\a\\b\\"), L"b");
  EXPECT_EQ(lastPart(L"C:\\"), L"C:");
}

TEST(AName, HasNoSeparator) {
  EXPECT_TRUE(isGoodName(L"new folder"));
  for (const wchar_t* name : {L"", L".", L"..", L"a/b", L"a\\b"}) EXPECT_FALSE(isGoodName(name));
}

}  // namespace
