// SPDX-License-Identifier: MIT
// What the history box reads from the profile and writes there.
#include <filesystem>
#include <fstream>

#include "tests/dialogs/HistoryBox.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HistoryStore : public HistoryBox {};

TEST_F(HistoryStore, NullNamesAndAnEmptySectionChangeNothing) {
  store({"a"});
  EXPECT_EQ(box.LoadHistoryList(nullptr, "Folder"), "");
  EXPECT_EQ(box.LoadHistoryList(kSection, nullptr), "");
  EXPECT_EQ(box.LoadHistoryList("", "Folder"), "");
  EXPECT_THAT(items(), IsEmpty());
  box.AddString("b");
  box.SaveHistoryList(false);
  EXPECT_THAT(stored(), ElementsAre("a")) << "saved without a section";
}

TEST_F(HistoryStore, LoadsUpToTheFirstEmptyEntry) {
  store({"b", "a", "B", "", "behind"});
  EXPECT_EQ(load(), "");
  EXPECT_THAT(items(), ElementsAre("b", "a", "B")) << "plain adds: no duplicates dropped";
}

TEST_F(HistoryStore, LoadsNoMoreThanTheMaximum) {
  store({"a", "b", "c"});
  box.SetMaxItems(2);
  load();
  EXPECT_THAT(items(), ElementsAre("a", "b"));
}

TEST_F(HistoryStore, AlwaysReadsTheFirstEntry) {
  store({"a", "b"});
  box.SetMaxItems(0);
  EXPECT_EQ(box.LoadHistoryList(kSection, "Folder", false), "a");
  EXPECT_THAT(items(), ElementsAre("a"));
}

TEST_F(HistoryStore, LoadsOnlyWhatExists) {
  const std::string folder = profile.path("folder");
  const std::string file = profile.path("file.txt");
  std::filesystem::create_directory(folder);
  std::ofstream(file).close();
  store({profile.path("gone"), folder, profile.path("gone too"), file});
  box.SetOnlyExisting(true);
  load();
  EXPECT_THAT(items(), ElementsAre(folder, file));
}

TEST_F(HistoryStore, ReturnsTheLastEntryReadWhenNoTextIsKept) {
  store({"a", "b", "c"});
  profile.write("Folder", "current");
  EXPECT_EQ(box.LoadHistoryList(kSection, "Folder", false), "") << "the empty entry ended the list";
  EXPECT_EQ(box.GetWindowText(), "");
  box.ResetContent();
  box.SetMaxItems(2);
  EXPECT_EQ(box.LoadHistoryList(kSection, "Folder", false), "b") << "the maximum ended the list";
}

TEST_F(HistoryStore, AStoredCurrentTextThatIsInTheListIsSelected) {
  store({"a", "B", "c"});
  profile.write("Folder", "b");
  EXPECT_EQ(load(), "b");
  EXPECT_EQ(box.GetCurSel(), 1);
  EXPECT_EQ(box.GetWindowText(), "B");
}

TEST_F(HistoryStore, AStoredCurrentTextThatIsNotInTheListIsTypedIn) {
  store({"a"});
  profile.write("Folder", " b ");
  EXPECT_EQ(load(), " b ");
  EXPECT_EQ(box.GetCurSel(), CB_ERR);
  EXPECT_EQ(box.GetWindowText(), " b ");
  EXPECT_THAT(items(), ElementsAre("a"));
}

TEST_F(HistoryStore, ABoxWithoutADropDownListGetsNoTextTypedIn) {
  create(CBS_SIMPLE);
  store({"a"});
  profile.write("Folder", "b");
  EXPECT_EQ(load(), "b");
  EXPECT_EQ(box.GetWindowText(), "");
}

TEST_F(HistoryStore, AnEmptyCurrentTextLeavesTheEditField) {
  store({"a"});
  box.SetWindowText("typed");
  EXPECT_EQ(load(), "");
  EXPECT_EQ(box.GetWindowText(), "typed");
}

TEST_F(HistoryStore, TheCurrentTextsEntryHasTheGivenName) {
  profile.write("Folder", "of the prefix");
  profile.write("Now", "given");
  EXPECT_EQ(box.LoadHistoryList(kSection, "Folder", true, "Now"), "given");
  EXPECT_EQ(box.LoadHistoryList(kSection, "Folder", true, ""), "of the prefix");
}

TEST_F(HistoryStore, WithoutPrefixAndNameTheCurrentTextComesFromLast) {
  profile.write("0", "first");
  profile.write("Last", "current");
  EXPECT_EQ(box.LoadHistoryList(kSection, ""), "current");
  EXPECT_THAT(items(), ElementsAre("first"));
  EXPECT_EQ(box.GetWindowText(), "current");
}

TEST_F(HistoryStore, SavesTheListAndTheCurrentText) {
  load();
  for (const char* text : {"a", "b"}) box.AddHistoryItem(text);
  box.SetWindowText(" typed ");
  box.SaveHistoryList(false);
  EXPECT_THAT(stored(), ElementsAre("b", "a"));
  EXPECT_EQ(profile.read("Folder"), " typed ");
}

TEST_F(HistoryStore, SavingAddsTheCurrentTextOnRequest) {
  load();
  box.AddHistoryItem("a");
  box.SetWindowText(" typed ");
  box.SaveHistoryList(true);
  EXPECT_THAT(stored(), ElementsAre("typed", "a"));
  EXPECT_EQ(profile.read("Folder"), "typed") << "the new item is selected before the text is stored";
}

TEST_F(HistoryStore, SavingAddsNoBlankText) {
  load();
  box.AddHistoryItem("a");
  box.SetWindowText("  ");
  box.SaveHistoryList(true);
  EXPECT_THAT(stored(), ElementsAre("a"));
  EXPECT_EQ(profile.read("Folder"), "  ");
}

TEST_F(HistoryStore, KeepsNoTextWithoutKeepCurrent) {
  profile.write("Folder", "before");
  box.LoadHistoryList(kSection, "Folder", false);
  box.AddHistoryItem("a");
  box.SaveHistoryList(false);
  EXPECT_THAT(stored(), ElementsAre("a"));
  EXPECT_EQ(profile.read("Folder"), "before");
}

TEST_F(HistoryStore, SavingWritesOneItemMoreThanTheMaximum) {
  load();
  box.SetMaxItems(2);
  for (const char* text : {"a", "b", "c", "d"}) box.AddString(text);
  box.SaveHistoryList(false);
  EXPECT_THAT(stored(), ElementsAre("a", "b", "c"));
}

TEST_F(HistoryStore, TheLargestMaximumIsNoSmallOne) {
  load();
  box.SetMaxItems(2147483647);
  box.AddHistoryItem("a");
  box.SaveHistoryList(false);
  EXPECT_THAT(stored(), ElementsAre("a"));
}

TEST_F(HistoryStore, SavingDeletesTheEntriesBehindTheList) {
  store({"a", "b", "c", "d"});
  load();
  box.SetMaxItems(2);
  box.SaveHistoryList(false);
  EXPECT_THAT(stored(), ElementsAre("a", "b"));
}

TEST_F(HistoryStore, AStaleEntryBehindAMissingOneStays) {
  load();
  for (int i = 0; i < 100; ++i) box.AddHistoryItem(("C:\\" + std::to_string(i)).c_str());
  profile.write("Folder150", "stale");
  box.SaveHistoryList(false);
  EXPECT_EQ(stored().size(), 100u);
  EXPECT_EQ(profile.read("Folder150"), "stale");
}

TEST_F(HistoryStore, DeletesNoEntryFromTheThousandthOn) {
  store(std::vector<std::string>(1001, "x"));
  load();
  box.ResetContent();
  box.SaveHistoryList(false);
  EXPECT_EQ(profile.read("Folder999"), "(none)");
  EXPECT_EQ(profile.read("Folder1000"), "x");
}

TEST_F(HistoryStore, ClearingEmptiesTheListAlone) {
  store({"a", "b"});
  load();
  box.ClearHistoryList(false);
  EXPECT_THAT(items(), IsEmpty());
  EXPECT_THAT(stored(), ElementsAre("a", "b"));
}

TEST_F(HistoryStore, ClearingDeletesTheEntriesOnRequest) {
  store({"a", "b", "c"});
  profile.write("Folder", "current");
  profile.write("Folder4", "behind the gap");
  load();
  box.ClearHistoryList(true);
  EXPECT_THAT(items(), IsEmpty());
  EXPECT_THAT(stored(), IsEmpty());
  EXPECT_EQ(profile.read("Folder"), "(none)");
  EXPECT_EQ(profile.read("Folder4"), "behind the gap");
}

TEST_F(HistoryStore, ClearingWithoutASectionDeletesNothing) {
  store({"a"});
  box.AddString("b");
  box.ClearHistoryList(true);
  EXPECT_THAT(items(), IsEmpty());
  EXPECT_THAT(stored(), ElementsAre("a"));
}

TEST_F(HistoryStore, TextsComeBackAsTheyWere) {
  const std::vector<std::string> texts = {"C:\\a b", "'quoted'", "D:\\\xE4\xF6\xFC", std::string(300, 'x')};
  load();
  for (auto text = texts.rbegin(); text != texts.rend(); ++text) box.AddHistoryItem(text->c_str());
  box.SaveHistoryList(false);
  box.ResetContent();
  load();
  EXPECT_EQ(items(), texts);
  EXPECT_EQ(box.GetCurSel(), 0);
}

// No application object, no store: the list still works.
TEST(HistoryWithoutApplication, IsAPlainList) {
  CWnd window;
  ASSERT_TRUE(window.CreateEx(0, "STATIC", "", WS_OVERLAPPEDWINDOW, {0, 0, 300, 200}, nullptr, 0));
  CHistoryCombo box(false);
  ASSERT_TRUE(box.Create(WS_CHILD | CBS_DROPDOWN, {0, 0, 200, 150}, window.m_hWnd, 1002));
  EXPECT_EQ(box.LoadHistoryList(kSection, "Folder"), "");
  EXPECT_EQ(box.AddHistoryItem("a"), 0);
  box.SaveHistoryList(true);
  box.ClearHistoryList(true);
  EXPECT_EQ(box.GetCount(), 0);
  window.DestroyWindow();
}

}  // namespace
