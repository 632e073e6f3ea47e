// SPDX-License-Identifier: MIT
// What the user can ask for, in one table: the menu, the keys and what each command needs come from it.
#pragma once

#include <optional>
#include <span>

#include "hosts/qxbrowse/lists/Items.h"
#include "hosts/qxbrowse/ui/System.h"
#include "hosts/qxbrowse/ui/Texts.h"

namespace browse {

enum class Command : WORD {
  open = 100,
  transfer,
  uploadFiles,
  uploadAny,
  copyTo,
  moveTo,
  rename,
  newFolder,
  remove,
  selectAll,
  exit,
  connect,
  disconnect,
  otherPane,
  parent,
  refresh,
  address,
  chooseFolder,
  moveBorders,
  sortName,
  sortSize,
  sortType,
  sortTime,
  cancel,
  cancelAll,
  retryFailed,
  clearDone,
  help,
  about,
};

// What commands depend on.
struct Situation {
  Side side = Side::local;  // of the pane that has, or last had, the focus
  bool isConnected = false;
  bool isLocalFolderShown = true;  // not the list of drives
  int selected = 0;                // in that pane
  bool isParentSelected = false;   // its row that leads to the folder above
  bool isFolder = false;           // what is selected alone
};

struct Key {
  BYTE modifiers = 0;  // FCONTROL, FSHIFT, FALT
  WORD code = 0;       // VK_...; 0: none
  // Not while a text is edited, where the key has a meaning of its own.
  bool isForLists = false;
};

struct CommandInfo {
  Command command;
  Text menu;
  Text title;
  Key key;
  bool (*isPossible)(const Situation&);
  bool isGroupEnd = false;  // a line follows in the menu
};

std::span<const CommandInfo> commands();
bool isPossible(Command command, const Situation& situation);

// The title with its key: L"&Rename\tF2".
std::wstring menuTitle(const CommandInfo& info);

// The command of a key as it comes with WM_KEYDOWN and WM_SYSKEYDOWN.
std::optional<Command> commandOf(WORD code, BYTE modifiers, bool isTextEdited);

// The caller's, and the window's that it is given to.
HMENU makeMenuBar();
// What can be done with the items of a pane.
HMENU makeContextMenu(const Situation& situation);
// Grays what is not possible.
void updateMenu(HMENU menu, const Situation& situation);

}  // namespace browse
