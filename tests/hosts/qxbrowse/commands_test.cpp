// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/Commands.h"

#include <gtest/gtest.h>

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

TEST(Commands, AreGrayInTheMenuWhereTheyAreNotPossible) {
  const HMENU bar = makeMenuBar();
  updateMenu(bar, {});
  EXPECT_NE(GetMenuState(bar, static_cast<UINT>(Command::disconnect), MF_BYCOMMAND) & MF_GRAYED, 0U);
  EXPECT_EQ(GetMenuState(bar, static_cast<UINT>(Command::connect), MF_BYCOMMAND) & MF_GRAYED, 0U);
  DestroyMenu(bar);
}

}  // namespace
