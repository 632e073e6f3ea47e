// SPDX-License-Identifier: MIT
// The list of the history box: adding, maximum, recent names, creation.
#include "tests/dialogs/HistoryBox.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HistoryList : public HistoryBox {
 protected:
  HistoryList() { load(); }
};

TEST_F(HistoryList, TheNewestItemIsOnTopAndSelected) {
  EXPECT_EQ(box.AddHistoryItem("C:\\one"), 0);
  EXPECT_EQ(box.AddHistoryItem("C:\\two"), 0);
  EXPECT_THAT(items(), ElementsAre("C:\\two", "C:\\one"));
  EXPECT_EQ(box.GetCurSel(), 0);
  EXPECT_EQ(box.GetWindowText(), "C:\\two");
}

TEST_F(HistoryList, ANewSpellingReplacesTheOldOneAtIndexThree) {
  for (const char* text : {"c:\\data", "c:\\3", "c:\\2", "c:\\1"}) box.AddHistoryItem(text);
  ASSERT_EQ(box.GetLBText(3), "c:\\data");
  EXPECT_EQ(box.AddHistoryItem("C:\\Data"), 0);
  EXPECT_THAT(items(), ElementsAre("C:\\Data", "c:\\1", "c:\\2", "c:\\3"));
}

TEST_F(HistoryList, ANewSpellingOfTheNewestReplacesIt) {
  box.AddHistoryItem("c:\\old");
  box.AddHistoryItem("c:\\data");
  box.AddHistoryItem("C:\\DATA");
  EXPECT_THAT(items(), ElementsAre("C:\\DATA", "c:\\old"));
}

// The search for an equal item starts behind the new one, goes round and finds that itself.
TEST_F(HistoryList, AnItemWithoutAnEqualOneStays) {
  box.AddHistoryItem("C:\\only");
  EXPECT_THAT(items(), ElementsAre("C:\\only"));
  box.AddHistoryItem("C:\\only\\below");
  EXPECT_THAT(items(), ElementsAre("C:\\only\\below", "C:\\only"));
}

TEST_F(HistoryList, OnlyTheFirstOfSeveralEqualItemsGoes) {
  for (const char* text : {"A", "b", "a"}) box.AddString(text);
  box.AddHistoryItem("a");
  EXPECT_THAT(items(), ElementsAre("a", "b", "a"));
}

TEST_F(HistoryList, BlanksAroundAnItemAreDropped) {
  EXPECT_EQ(box.AddHistoryItem("  C:\\my data \t"), 0);
  EXPECT_THAT(items(), ElementsAre("C:\\my data"));
}

TEST_F(HistoryList, ATextOfBlanksOnlyIsRefused) {
  box.AddHistoryItem("C:\\one");
  EXPECT_EQ(box.AddHistoryItem("   "), -1);
  EXPECT_EQ(box.AddHistoryItem(""), -1);
  EXPECT_EQ(box.AddHistoryItem(nullptr), -1);
  EXPECT_THAT(items(), ElementsAre("C:\\one"));
}

TEST_F(HistoryList, TheHundredAndFirstItemDropsTheOldest) {
  for (int i = 1; i <= 100; ++i) box.AddHistoryItem(("C:\\" + std::to_string(i)).c_str());
  ASSERT_EQ(box.GetCount(), 100);
  EXPECT_EQ(box.AddHistoryItem("C:\\101"), 0);
  EXPECT_EQ(box.GetCount(), 100);
  EXPECT_EQ(box.GetLBText(0), "C:\\101");
  EXPECT_EQ(box.GetLBText(99), "C:\\2");
}

TEST_F(HistoryList, ADuplicateInAFullListDropsNothingElse) {
  box.SetMaxItems(3);
  for (const char* text : {"a", "b", "c", "A"}) box.AddHistoryItem(text);
  EXPECT_THAT(items(), ElementsAre("A", "c", "b"));
  box.AddHistoryItem("C");
  EXPECT_THAT(items(), ElementsAre("C", "A", "b"));
}

TEST_F(HistoryList, ASmallerMaximumDropsTheOldestAtOnce) {
  for (const char* text : {"a", "b", "c", "d"}) box.AddHistoryItem(text);
  box.SetMaxItems(2);
  EXPECT_THAT(items(), ElementsAre("d", "c"));
  box.SetMaxItems(5);
  EXPECT_THAT(items(), ElementsAre("d", "c"));
  box.SetMaxItems(0);
  EXPECT_THAT(items(), IsEmpty());
  EXPECT_EQ(box.AddHistoryItem("e"), 0);
  EXPECT_THAT(items(), IsEmpty());
}

TEST_F(HistoryList, ANegativeMaximumComesToAnEnd) {
  box.AddHistoryItem("a");
  box.SetMaxItems(-1);
  EXPECT_EQ(box.AddHistoryItem("b"), 0);
  EXPECT_THAT(items(), ElementsAre("b", "a"));
}

TEST_F(HistoryBox, WithoutASectionOrAPrefixAnItemIsAddedPlainly) {
  EXPECT_EQ(box.AddHistoryItem(" a "), 0);
  EXPECT_EQ(box.AddHistoryItem(" a "), 1);
  EXPECT_EQ(box.AddHistoryItem(""), 2);
  EXPECT_THAT(items(), ElementsAre(" a ", " a ", ""));
  EXPECT_EQ(box.GetCurSel(), CB_ERR);
  box.LoadHistoryList(kSection, "");
  EXPECT_EQ(box.AddHistoryItem(" b "), 3);
}

TEST_F(HistoryList, TheEditTextBecomesAnItem) {
  box.SetWindowText(" C:\\typed ");
  box.StoreEditText(true);
  EXPECT_THAT(items(), ElementsAre("C:\\typed"));
}

TEST_F(HistoryBox, AnEmptyEditTextIsIgnoredOnlyOnRequest) {
  box.StoreEditText(true);
  EXPECT_THAT(items(), IsEmpty());
  box.StoreEditText(false);
  EXPECT_THAT(items(), ElementsAre("")) << "a plain add: the box has no section";
}

TEST_F(HistoryBox, RecentNamesAreAddedInTheirOrder) {
  const std::string names[] = {"C:\\b", " C:\\a ", "C:\\b", "not this one"};
  const CRecentFileList list{3, names};
  EXPECT_EQ(box.LoadFromRecentList(nullptr, true), "");
  EXPECT_EQ(box.LoadFromRecentList(&list, false), "");
  EXPECT_THAT(items(), ElementsAre("C:\\b", " C:\\a ", "C:\\b"));
  EXPECT_EQ(box.GetCurSel(), CB_ERR);
  EXPECT_EQ(box.LoadFromRecentList(&list, true), "C:\\b");
  EXPECT_EQ(box.GetCount(), 6);
  EXPECT_EQ(box.GetCurSel(), 0);
}

TEST_F(HistoryBox, AnEmptyRecentListGivesTheTextThatWasThere) {
  box.SetWindowText("typed");
  const CRecentFileList none;
  EXPECT_EQ(box.LoadFromRecentList(&none, false), "typed");
}

TEST_F(HistoryBox, TheSortedStyleIsRemovedOnCreation) {
  create(CBS_DROPDOWN | CBS_SORT);
  EXPECT_EQ(box.GetStyle() & CBS_SORT, 0u);
  EXPECT_EQ(box.GetStyle() & CBS_AUTOHSCROLL, DWORD{CBS_AUTOHSCROLL});
  for (const char* text : {"b", "a"}) box.AddString(text);
  EXPECT_THAT(items(), ElementsAre("b", "a"));
}

TEST_F(HistoryBox, TheSortedStyleStaysWhereSortingIsAllowed) {
  CHistoryCombo sorted(true);
  ASSERT_TRUE(sorted.Create(WS_CHILD | CBS_DROPDOWN | CBS_SORT, {0, 0, 200, 150}, window.m_hWnd, 1003));
  EXPECT_EQ(sorted.GetStyle() & CBS_SORT, DWORD{CBS_SORT});
}

TEST_F(HistoryBox, TheSortedStyleOfAControlThatIsTakenOverStays) {
  CComboBox control;
  ASSERT_TRUE(control.Create(WS_CHILD | CBS_DROPDOWN | CBS_SORT, {0, 0, 200, 150}, window.m_hWnd, 1003));
  const HWND handle = control.UnsubclassWindow();
  CHistoryCombo sorted(false);
  ASSERT_TRUE(sorted.SubclassWindow(handle));
  EXPECT_EQ(sorted.GetStyle() & CBS_SORT, DWORD{CBS_SORT});
}

}  // namespace
