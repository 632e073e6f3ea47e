// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/lists/ItemList.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace browse;
using testing::ElementsAre;

ItemList listOf(std::vector<Item> items) { return ItemList(std::move(items)); }

std::vector<std::wstring> namesOf(const ItemList& list) {
  std::vector<std::wstring> names;
  for (std::size_t row = 0; row < list.size(); ++row) names.push_back(list[row].name);
  return names;
}

TEST(TheOrderOfNames, IsThatOfPeople) {
  const ItemList list =
      listOf({{L"a10"}, {L"A2"}, {L"b"}, {L"a1b"}, {L"a"}, {L"a1"}, {L"_"}, {L"a99999999999999999999"}});
  EXPECT_THAT(namesOf(list),
              ElementsAre(L"_", L"a", L"a1", L"a1b", L"A2", L"a10", L"a99999999999999999999", L"b"));
}

TEST(TheOrderOfNames, TakesNoNoticeOfLeadingZeros) {
  EXPECT_THAT(namesOf(listOf({{L"p10"}, {L"p009"}, {L"p08"}, {L"p0"}, {L"p00"}})),
              ElementsAre(L"p0", L"p00", L"p08", L"p009", L"p10"));
}

TEST(AList, HasFoldersFirstInEitherDirection) {
  ItemList list = listOf({{L"z"}, {L"y", true}, {L"a"}, {L"b", true}});
  EXPECT_THAT(namesOf(list), ElementsAre(L"b", L"y", L"a", L"z"));
  list.sort({Column::name, true});
  EXPECT_THAT(namesOf(list), ElementsAre(L"y", L"b", L"z", L"a"));
}

TEST(AList, IsSortedByEachColumnAndThenByName) {
  ItemList list = listOf({{L"c.txt", false, 5, 30}, {L"b.TXT", false, 5, 10}, {L"a.bin", false, 7, 20}});
  list.sort({Column::size, false});
  EXPECT_THAT(namesOf(list), ElementsAre(L"b.TXT", L"c.txt", L"a.bin"));
  list.sort({Column::size, true});
  EXPECT_THAT(namesOf(list), ElementsAre(L"a.bin", L"b.TXT", L"c.txt"));
  list.sort({Column::type, false});
  EXPECT_THAT(namesOf(list), ElementsAre(L"a.bin", L"b.TXT", L"c.txt"));
  list.sort({Column::time, false});
  EXPECT_THAT(namesOf(list), ElementsAre(L"b.TXT", L"a.bin", L"c.txt"));
}

TEST(AList, CanBeMadeInAnyOrder) {
  const ItemList list({{L"a", false, 1}, {L"b", false, 2}}, {Column::size, true});
  EXPECT_THAT(namesOf(list), ElementsAre(L"b", L"a"));
}

TEST(AList, FindsByTheBeginningOfANameInEitherCaseAndAround) {
  const ItemList list = listOf({{L"apple"}, {L"Bear"}, {L"bee"}});
  EXPECT_EQ(list.findPrefix(L"BE", 0), 1U);
  EXPECT_EQ(list.findPrefix(L"be", 2), 2U);
  EXPECT_EQ(list.findPrefix(L"a", 1), 0U) << "around";
  EXPECT_EQ(list.findPrefix(L"bears", 0), std::nullopt);
  EXPECT_EQ(ItemList().findPrefix(L"a", 0), std::nullopt);
}

TEST(AList, KnowsItsItemsAgainAfterSorting) {
  ItemList list = listOf({{L"a", false, 9}, {L"b", false, 8}, {L"c", false, 7}});
  const std::vector<std::size_t> chosen = {list.identity(0), list.identity(2)};
  list.sort({Column::size, false});
  EXPECT_THAT(list.rowsOf(chosen), ElementsAre(0, 2));
  EXPECT_EQ(list[list.rowsOf({chosen.front()}).front()].name, L"a");
}

TEST(AnExtension, IsWhatFollowsTheLastDot) {
  EXPECT_EQ(extensionOf({L"a.tar.GZ"}), L"gz");
  EXPECT_EQ(extensionOf({L".profile"}), L"");
  EXPECT_EQ(extensionOf({L"folder.d", true}), L"");
  EXPECT_EQ(extensionOf({L"end."}), L"");
}

TEST(AList, SortsAHundredThousandItems) {
  std::vector<Item> items;
  for (int i = 0; i < 100'000; ++i)
    items.push_back({L"file" + std::to_wstring(i * 7919 % 100'000), i % 9 == 0});
  const ItemList list = listOf(std::move(items));
  ASSERT_EQ(list.size(), 100'000U);
  EXPECT_TRUE(list[0].isFolder);
  EXPECT_EQ(list.findName(L"file99999"),
            list.size() - 1 - (list[list.size() - 1].name == L"file99999" ? 0U : 1U));
}

}  // namespace
