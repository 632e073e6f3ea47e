// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/Commands.h"

#include <algorithm>
#include <array>
#include <utility>

namespace browse {
namespace {

bool always(const Situation&) { return true; }
bool connected(const Situation& now) { return now.isConnected; }
bool disconnected(const Situation& now) { return !now.isConnected; }
bool folderShown(const Situation& now) {
  return now.side == Side::local ? now.isLocalFolderShown : now.isConnected;
}
bool canList(const Situation& now) { return now.side == Side::local || now.isConnected; }
bool canUpload(const Situation& now) { return now.isConnected; }
bool anySelected(const Situation& now) { return now.selected > 0 && folderShown(now); }
bool oneSelected(const Situation& now) { return now.selected == 1 && folderShown(now); }
bool canTransfer(const Situation& now) {
  return anySelected(now) && now.isConnected && now.isLocalFolderShown;
}
// A file is opened by its transfer.
bool canOpen(const Situation& now) {
  const bool isFolder = now.isParentSelected || (now.selected == 1 && now.isFolder);
  return isFolder ? canList(now) : now.selected == 1 && canTransfer(now);
}
bool anyOnServer(const Situation& now) { return now.side == Side::server && anySelected(now); }

constexpr bool kForLists = true;
constexpr bool kGroupEnd = true;
constexpr Key kNone{};

constexpr std::array kCommands = {
    CommandInfo{Command::open, Text::menuFile, Text::commandOpen, {0, VK_RETURN, kForLists}, &canOpen},
    CommandInfo{Command::transfer, Text::menuFile, Text::commandTransfer, {0, VK_F5}, &canTransfer},
    CommandInfo{Command::uploadFiles, Text::menuFile, Text::commandUploadFiles, {FCONTROL, 'U'}, &canUpload},
    CommandInfo{Command::uploadAny,
                Text::menuFile,
                Text::commandUploadAny,
                {FCONTROL | FSHIFT, 'U'},
                &canUpload,
                kGroupEnd},
    CommandInfo{Command::copyTo, Text::menuFile, Text::commandCopyTo, {FSHIFT, VK_F5}, &anyOnServer},
    CommandInfo{Command::moveTo, Text::menuFile, Text::commandMoveTo, {0, VK_F6}, &anyOnServer},
    CommandInfo{Command::rename, Text::menuFile, Text::commandRename, {0, VK_F2}, &oneSelected},
    CommandInfo{Command::newFolder, Text::menuFile, Text::commandNewFolder, {0, VK_F7}, &folderShown},
    CommandInfo{
        Command::remove, Text::menuFile, Text::commandDelete, {0, VK_DELETE, kForLists}, &anySelected},
    CommandInfo{Command::selectAll,
                Text::menuFile,
                Text::commandSelectAll,
                {FCONTROL, 'A', kForLists},
                &always,
                kGroupEnd},
    CommandInfo{Command::exit, Text::menuFile, Text::commandExit, {FALT, VK_F4}, &always},
    CommandInfo{Command::connect, Text::menuServer, Text::commandConnect, {FCONTROL, 'N'}, &disconnected},
    CommandInfo{Command::disconnect, Text::menuServer, Text::commandDisconnect, {FCONTROL, 'D'}, &connected},
    CommandInfo{Command::otherPane, Text::menuView, Text::commandOtherPane, {0, VK_TAB}, &always},
    CommandInfo{Command::parent, Text::menuView, Text::commandParent, {0, VK_BACK, kForLists}, &folderShown},
    CommandInfo{Command::refresh, Text::menuView, Text::commandRefresh, {FCONTROL, 'R'}, &canList},
    CommandInfo{Command::address, Text::menuView, Text::commandAddress, {FCONTROL, 'L'}, &canList},
    CommandInfo{Command::chooseFolder,
                Text::menuView,
                Text::commandChooseFolder,
                {FCONTROL, 'O'},
                &always,
                kGroupEnd},
    CommandInfo{
        Command::moveBorders, Text::menuView, Text::commandMoveBorders, {0, VK_F8}, &always, kGroupEnd},
    CommandInfo{Command::sortName, Text::menuView, Text::commandSortName, {FCONTROL, '1'}, &always},
    CommandInfo{Command::sortSize, Text::menuView, Text::commandSortSize, {FCONTROL, '2'}, &always},
    CommandInfo{Command::sortType, Text::menuView, Text::commandSortType, {FCONTROL, '3'}, &always},
    CommandInfo{Command::sortTime, Text::menuView, Text::commandSortTime, {FCONTROL, '4'}, &always},
    CommandInfo{Command::cancel, Text::menuQueue, Text::commandCancel, {0, VK_ESCAPE, kForLists}, &always},
    CommandInfo{
        Command::cancelAll, Text::menuQueue, Text::commandCancelAll, {FSHIFT, VK_ESCAPE}, &always, kGroupEnd},
    CommandInfo{Command::retryFailed, Text::menuQueue, Text::commandRetry, kNone, &connected},
    CommandInfo{Command::clearDone, Text::menuQueue, Text::commandClearDone, kNone, &always},
    CommandInfo{Command::help, Text::menuHelp, Text::commandHelp, {0, VK_F1}, &always},
    CommandInfo{Command::about, Text::menuHelp, Text::commandAbout, kNone, &always},
};

constexpr Text kMenus[] = {Text::menuFile, Text::menuServer, Text::menuView, Text::menuQueue, Text::menuHelp};

constexpr std::pair<WORD, Text> kKeyNames[] = {
    {VK_RETURN, Text::keyEnter},  {VK_TAB, Text::keyTab},        {VK_ESCAPE, Text::keyEscape},
    {VK_DELETE, Text::keyDelete}, {VK_BACK, Text::keyBackspace},
};

std::wstring codeName(WORD code) {
  const auto* const named = std::ranges::find(kKeyNames, code, &std::pair<WORD, Text>::first);
  if (named != std::end(kKeyNames)) return text(named->second);
  const bool isFunctionKey = code >= VK_F1 && code <= VK_F12;
  return isFunctionKey ? text(Text::keyFunction, {std::to_wstring(code - VK_F1 + 1)})
                       : std::wstring(1, static_cast<wchar_t>(code));
}

std::wstring keyName(const Key& key) {
  std::wstring name;
  if ((key.modifiers & FCONTROL) != 0) name += text(Text::keyCtrl);
  if ((key.modifiers & FSHIFT) != 0) name += text(Text::keyShift);
  if ((key.modifiers & FALT) != 0) name += text(Text::keyAlt);
  return name + codeName(key.code);
}

void append(HMENU menu, const CommandInfo& info) {
  AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(info.command), menuTitle(info).c_str());
  if (info.isGroupEnd) AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
}

}  // namespace

std::span<const CommandInfo> commands() { return kCommands; }

bool isPossible(Command command, const Situation& situation) {
  const auto* const info = std::ranges::find(kCommands, command, &CommandInfo::command);
  return info != kCommands.end() && info->isPossible(situation);
}

std::wstring menuTitle(const CommandInfo& info) {
  const std::wstring title = text(info.title);
  return info.key.code == 0 ? title : title + L'\t' + keyName(info.key);
}

std::optional<Command> commandOf(WORD code, BYTE modifiers, bool isTextEdited) {
  for (const CommandInfo& info : kCommands) {
    const bool isKey = info.key.code == code && info.key.modifiers == modifiers && code != 0;
    if (isKey && !(isTextEdited && info.key.isForLists)) return info.command;
  }
  return {};
}

HMENU makeMenuBar() {
  const HMENU bar = CreateMenu();
  for (const Text title : kMenus) {
    const HMENU menu = CreatePopupMenu();
    for (const CommandInfo& info : kCommands) {
      if (info.menu == title) append(menu, info);
    }
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), text(title));
  }
  return bar;
}

HMENU makeContextMenu(const Situation& situation) {
  const HMENU menu = CreatePopupMenu();
  for (const CommandInfo& info : kCommands) {
    const bool isOfItems = info.menu == Text::menuFile && info.command != Command::exit;
    if (isOfItems || info.command == Command::refresh) append(menu, info);
  }
  updateMenu(menu, situation);
  return menu;
}

void updateMenu(HMENU menu, const Situation& situation) {
  for (const CommandInfo& info : kCommands) {
    const UINT state = info.isPossible(situation) ? MF_ENABLED : MF_GRAYED;
    EnableMenuItem(menu, static_cast<UINT>(info.command), MF_BYCOMMAND | state);
  }
}

}  // namespace browse
