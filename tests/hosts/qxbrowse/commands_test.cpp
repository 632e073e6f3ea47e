// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/Commands.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <cwctype>
#include <set>

namespace {

using namespace browse;

TEST(Commands, HaveKeysOfTheirOwn) {
  std::set<std::pair<BYTE, WORD>> keys;
  for (const CommandInfo& info : commands()) {
    if (info.key.code == 0) continue;
    EXPECT_TRUE(keys.emplace(info.key.modifiers, info.key.code).second) << static_cast<int>(info.command);
    EXPECT_EQ(commandOf(info.key.code, info.key.modifiers, false), info.command);
  }
}

TEST(Commands, StandOnceEach) {
  std::set<Command> seen;
  for (const CommandInfo& info : commands()) EXPECT_TRUE(seen.insert(info.command).second);
}

TEST(Commands, LeaveAnEditedTextItsKeys) {
  for (const WORD key : {WORD{VK_DELETE}, WORD{VK_BACK}, WORD{VK_RETURN}, WORD{VK_ESCAPE}})
    EXPECT_EQ(commandOf(key, 0, true), std::nullopt);
  EXPECT_EQ(commandOf('A', FCONTROL, true), std::nullopt);
  EXPECT_EQ(commandOf(VK_TAB, 0, true), Command::otherPane);
  EXPECT_EQ(commandOf(VK_F1, 0, true), Command::help);
}

TEST(Commands, ShowTheirKeysInTheMenu) {
  const auto titleOf = [](Command command) {
    for (const CommandInfo& info : commands()) {
      if (info.command == command) return menuTitle(info);
    }
    return std::wstring();
  };
  EXPECT_EQ(titleOf(Command::rename), L"&Rename\tF2");
  EXPECT_EQ(titleOf(Command::uploadAny), L"Upload files and &folders...\tCtrl+Shift+U");
  EXPECT_EQ(titleOf(Command::remove), L"&Delete...\tDel");
  EXPECT_EQ(titleOf(Command::exit), L"E&xit\tAlt+F4");
  EXPECT_EQ(titleOf(Command::about), L"&About qxbrowse");
}

// What each situation allows.
TEST(Commands, ArePossibleWhereTheyMakeSense) {
  const Situation offline{};
  EXPECT_TRUE(isPossible(Command::connect, offline));
  for (const Command command :
       {Command::disconnect, Command::transfer, Command::uploadFiles, Command::rename}) {
    EXPECT_FALSE(isPossible(command, offline)) << static_cast<int>(command);
  }
  Situation chosen{Side::local, false, true, 1};
  EXPECT_TRUE(isPossible(Command::rename, chosen));
  EXPECT_TRUE(isPossible(Command::remove, chosen));
  EXPECT_FALSE(isPossible(Command::transfer, chosen)) << "no other side";
  chosen.isConnected = true;
  EXPECT_TRUE(isPossible(Command::transfer, chosen));
  EXPECT_FALSE(isPossible(Command::copyTo, chosen)) << "on the server alone";
  chosen.side = Side::server;
  EXPECT_TRUE(isPossible(Command::copyTo, chosen));
  chosen.isLocalFolderShown = false;
  EXPECT_FALSE(isPossible(Command::transfer, chosen)) << "the drives are no place for files";
  chosen.selected = 2;
  EXPECT_FALSE(isPossible(Command::rename, chosen));
  EXPECT_TRUE(isPossible(Command::remove, chosen));
}

// What a right click offers, by the first letters of what is not gray.
struct Offer {
  const char* on;
  Situation now;
  std::wstring commands;
};

TEST(AContextMenu, OffersWhatIsPossibleWithWhatIsSelected) {
  const Offer offers[] = {
      {"nothing here", {Side::local, true, true, 0}, L"UUNSR"},
      {"a file here", {Side::local, true, true, 1}, L"OTUURNDSR"},
      {"a folder here", {Side::local, true, true, 1, false, true}, L"OTUURNDSR"},
      {"several here", {Side::local, true, true, 2}, L"TUUNDSR"},
      {"a file here, no server", {Side::local, false, true, 1}, L"RNDSR"},
      {"a folder here, no server", {Side::local, false, true, 1, false, true}, L"ORNDSR"},
      {"a drive", {Side::local, true, false, 1, false, true}, L"OUUSR"},
      {"nothing there", {Side::server, true, true, 0}, L"UUNSR"},
      {"a file there", {Side::server, true, true, 1}, L"OTUUCMRNDSR"},
      {"a folder there", {Side::server, true, true, 1, false, true}, L"OTUUCMRNDSR"},
      {"several there", {Side::server, true, true, 2}, L"TUUCMNDSR"},
      {"a file there, drives here", {Side::server, true, false, 1}, L"UUCMRNDSR"},
      {"no server", {Side::server, false, true, 0}, L"S"},
  };
  for (const Offer& offer : offers) {
    const HMENU menu = makeContextMenu(offer.now);
    std::wstring possible;
    for (int place = 0; place < GetMenuItemCount(menu); ++place) {
      const UINT state = GetMenuState(menu, static_cast<UINT>(place), MF_BYPOSITION);
      wchar_t title[64] = L"";
      GetMenuStringW(menu, static_cast<UINT>(place), title, 64, MF_BYPOSITION);
      if ((state & (MF_GRAYED | MF_SEPARATOR)) == 0) possible += title[0] == L'&' ? title[1] : title[0];
    }
    EXPECT_EQ(possible, offer.commands) << offer.on;
    DestroyMenu(menu);
  }
}

// "R" was two of them, and did neither.
TEST(AContextMenu, HasALetterForEachEntry) {
  const HMENU menu = makeContextMenu({Side::server, true, true, 1});
  std::set<wchar_t> letters;
  for (int place = 0; place < GetMenuItemCount(menu); ++place) {
    wchar_t title[64] = L"";
    if (GetMenuStringW(menu, static_cast<UINT>(place), title, 64, MF_BYPOSITION) == 0) continue;
    const wchar_t* const mark = std::wcschr(title, L'&');
    ASSERT_NE(mark, nullptr);
    EXPECT_TRUE(letters.insert(static_cast<wchar_t>(std::towupper(mark[1]))).second) << place;
  }
  DestroyMenu(menu);
}

TEST(Commands, AreGrayInTheMenuWhereTheyAreNotPossible) {
  const HMENU bar = makeMenuBar();
  updateMenu(bar, {});
  EXPECT_NE(GetMenuState(bar, static_cast<UINT>(Command::disconnect), MF_BYCOMMAND) & MF_GRAYED, 0U);
  EXPECT_EQ(GetMenuState(bar, static_cast<UINT>(Command::connect), MF_BYCOMMAND) & MF_GRAYED, 0U);
  DestroyMenu(bar);
}

}  // namespace
