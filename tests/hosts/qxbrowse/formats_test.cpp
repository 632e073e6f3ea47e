// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/lists/Formats.h"

#include <gtest/gtest.h>

#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/window/DeleteQuestion.h"

namespace {

using namespace browse;

TEST(ASize, IsInBytesBelowAKilobyte) {
  EXPECT_EQ(sizeText(0), L"0 bytes");
  EXPECT_EQ(sizeText(1023), L"1023 bytes");
}

TEST(ASize, HasThreeDigitsAndIsNeverRoundedUp) {
  EXPECT_EQ(sizeText(1024), L"1.00 KB");
  EXPECT_EQ(sizeText(1536), L"1.50 KB");
  EXPECT_EQ(sizeText(10 * 1024), L"10.0 KB");
  EXPECT_EQ(sizeText(1024 * 1024 - 1), L"1023 KB");
  EXPECT_EQ(sizeText(123'456'789), L"117 MB");
  EXPECT_EQ(sizeText(std::uint64_t{5} << 30), L"5.00 GB");
  EXPECT_EQ(sizeText(~std::uint64_t{0}), L"16777215 TB");
}

TEST(ANumber, HasCommas) {
  EXPECT_EQ(exactText(0), L"0");
  EXPECT_EQ(exactText(999), L"999");
  EXPECT_EQ(exactText(1000), L"1,000");
  EXPECT_EQ(exactText(1'234'567), L"1,234,567");
}

TEST(ATime, IsShownAsItIsTold) { EXPECT_EQ(timeText(133'771'666'200'000'000), L"2024-11-27 07:37"); }

TEST(ATime, IsEmptyWhereThereIsNone) {
  EXPECT_EQ(timeText(0), L"");
  EXPECT_EQ(timeText(-1), L"");
}

TEST(AText, IsFilledWithWhatIsGiven) {
  EXPECT_EQ(text(Text::statusFailed, {L"a", L"b"}), L"a: b");
  EXPECT_EQ(text(Text::windowTitle, {L"50%1"}), L"50%1 - qxbrowse") << "what is given is not filled again";
  EXPECT_EQ(text(Text::windowTitle, {}), L"%1 - qxbrowse");
}

TEST(ADeletion, NamesWhatGoesAndWhere) {
  EXPECT_EQ(deleteQuestion({{L"C:\\here\\a.txt"}}, Side::local),
            L"Delete \"a.txt\"?\n\n" + std::wstring(text(Text::askDeleteLocal)));
  EXPECT_EQ(deleteQuestion({{L"/pub/a"}, {L"/pub/b", true}}, Side::server),
            L"Delete these 2 items?\n\na\nb\n\n" + std::wstring(text(Text::askDeleteServer)));
}

TEST(ADeletion, NamesTenOfManyAndCountsTheRest) {
  const std::vector<Place> places(1234, Place{L"/x"});
  const std::wstring question = deleteQuestion(places, Side::server);
  EXPECT_TRUE(question.starts_with(L"Delete these 1,234 items?\n\nx\n")) << "the count";
  EXPECT_NE(question.find(L"x\n... and 1,224 more\n"), std::wstring::npos);
}

TEST(ADeletion, ShowsANameOnOneLine) {
  EXPECT_EQ(deleteQuestion({{L"/a\n\nGo on?"}}, Side::server),
            L"Delete \"a  Go on?\"?\n\n" + std::wstring(text(Text::askDeleteServer)));
}

}  // namespace
