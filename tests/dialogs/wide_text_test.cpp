// SPDX-License-Identifier: MIT
// Texts of the shell in the system's code page.
#include <gtest/gtest.h>

#include "framework/ui/WideText.h"

namespace {

// U+0141 looks like an L and is none: the code page's own mapping would name another file.
TEST(NarrowText, HasNoCharacterThatMerelyLooksAlike) {
  EXPECT_EQ(narrowText(L"\u0141a.txt"), "?a.txt");
  EXPECT_EQ(exactNarrowText(L"\u0141a.txt"), std::nullopt);
  EXPECT_EQ(exactNarrowText(L"a\u2260"), std::nullopt);
}

TEST(NarrowText, IsExactWhereTheCodePageHasAllCharacters) {
  EXPECT_EQ(exactNarrowText(L"plain.txt"), "plain.txt");
  EXPECT_EQ(exactNarrowText(L""), "");
  EXPECT_EQ(exactNarrowText(L"a question? mark"), "a question? mark");
  const auto text = exactNarrowText(L"\u00DCbung");
  ASSERT_TRUE(text);
  EXPECT_EQ(wideText(*text), L"\u00DCbung");
}

}  // namespace
