// SPDX-License-Identifier: MIT
#include "hosts/shared/windows/CodePages.h"

#include <gtest/gtest.h>

#include "hosts/shared/windows/System.h"

namespace hosts {
namespace {

constexpr const wchar_t* kLooksLikeUtf8 = L"\u00C3\u00A9";  // in the code page of Western Europe

TEST(ATextInUtf8, IsNoneOfOtherBytes) {
  EXPECT_EQ(wide("caf\xC3\xA9", Encoding::utf8), L"caf\u00E9");
  EXPECT_EQ(wide("", Encoding::utf8), L"");
  EXPECT_EQ(wide("caf\xE9", Encoding::utf8), std::nullopt);
  EXPECT_EQ(wideWithMarks("caf\xE9", Encoding::utf8), L"caf\uFFFD");
}

TEST(ATextInUtf8, HasAllCharacters) {
  const std::wstring text = L"a\u00E9\u4E2D\xD83D\xDE00";
  EXPECT_EQ(narrow(text, Encoding::utf8), "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
  EXPECT_EQ(narrowWithMarks(text, Encoding::utf8), narrow(text, Encoding::utf8));
  EXPECT_EQ(narrow(L"", Encoding::utf8), "");
}

TEST(ATextInTheCodePage, IsNoneOfCharactersThatItLacks) {
  if (GetACP() != 1252) GTEST_SKIP() << "this system's code page is " << GetACP() << ", not 1252";
  EXPECT_EQ(narrow(L"caf\u00E9", Encoding::codePage), "caf\xE9");
  EXPECT_EQ(wide("caf\xE9", Encoding::codePage), L"caf\u00E9");
  EXPECT_EQ(narrow(L"\u4E2D", Encoding::codePage), std::nullopt);
  EXPECT_EQ(narrow(L"\u0100", Encoding::codePage), std::nullopt) << "which resembles an A";
  EXPECT_EQ(narrowWithMarks(L"a\u4E2D", Encoding::codePage), "a?");
}

TEST(ATextForTheLibrary, IsInTheCodePageWhereItCanBe) {
  if (GetACP() != 1252) GTEST_SKIP() << "this system's code page is " << GetACP() << ", not 1252";
  EXPECT_EQ(toLibrary(L"caf\u00E9"), "caf\xE9");
  EXPECT_EQ(toLibrary(L"\u4E2D"), "\xE4\xB8\xAD");
  EXPECT_EQ(toLibrary(kLooksLikeUtf8), "\xC3\x83\xC2\xA9");
}

// In qxbrowse, where the code page was not UTF-8, a name that looked like UTF-8 came back as another one.
TEST(ATextForTheLibrary, ComesBackAsItWas) {
  for (const wchar_t* text : {L"", L"plain", L"caf\u00E9", L"\u4E2D", L"caf\u00E9 \u4E2D", kLooksLikeUtf8})
    EXPECT_EQ(fromLibrary(toLibrary(text)), text);
}

}  // namespace
}  // namespace hosts
