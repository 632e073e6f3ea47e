// SPDX-License-Identifier: MIT
// What the commands of the main window do.
#include <algorithm>

#include "hosts/qxbrowse/lists/SidePaths.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/TextQuestion.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/window/DeleteQuestion.h"
#include "hosts/qxbrowse/window/MainWindow.h"

namespace browse {
namespace {

Side otherSide(Side side) { return side == Side::local ? Side::server : Side::local; }

bool isPath(const std::wstring& path) { return !path.empty(); }

}  // namespace

PaneEvents MainWindow::eventsOf(Side side) {
  PaneEvents events;
  events.pathTyped = [this, side](const std::wstring& path) { go(side, path); };
  events.parentPressed = [this, side] { goToParent(side); };
  events.activated = [this] { open(); };
  events.renamed = [this, side](const Item& item, const std::wstring& name) { rename(side, item, name); };
  events.focused = [this, side] {
    m_active = side;
    updateCommands();
    updateStatus();
  };
  events.selectionChanged = [this] {
    updateCommands();
    updateStatus();
  };
  events.dragBegun = [this, side](const NMLISTVIEW& what) { beginDrag(side, what); };
  return events;
}

void MainWindow::execute(Command command) {
  if (m_isEnding || !isPossible(command, situation())) return;
  if (!runOnPane(command) && !runOnServices(command)) PostMessageW(m_window, WM_CLOSE, 0, 0);
}

bool MainWindow::runOnPane(Command command) {
  ListPane& active = pane(m_active);
  switch (command) {
    case Command::open:
      return open(), true;
    case Command::transfer:
      return transfer(m_active, pane(otherSide(m_active)).path()), true;
    case Command::rename:
      return active.editName(), true;
    case Command::newFolder:
      return askAndCreateFolder(), true;
    case Command::remove:
      return askAndRemove(), true;
    case Command::copyTo:
    case Command::moveTo:
      return askAndCopy(command == Command::moveTo), true;
    case Command::selectAll:
      return active.selectAll(), true;
    case Command::otherPane:
      return focusNext(), true;
    case Command::parent:
      return goToParent(m_active), true;
    case Command::refresh:
      return go(m_active, active.path()), true;
    case Command::address:
      return active.editAddress(), true;
    case Command::moveBorders:
      return beginMovingBorders(), true;
    case Command::sortName:
    case Command::sortSize:
    case Command::sortType:
    case Command::sortTime:
      return active.sort(Column{static_cast<int>(command) - static_cast<int>(Command::sortName)}), true;
    default:
      return false;
  }
}

bool MainWindow::runOnServices(Command command) {
  const std::wstring& local = pane(Side::local).path();
  switch (command) {
    case Command::connect:
      return m_services.connect(), true;
    case Command::disconnect:
      return m_services.disconnect(), true;
    case Command::chooseFolder: {
      const std::wstring folder = m_services.chooseLocalFolder(local);
      if (!folder.empty()) go(Side::local, folder);
      return true;
    }
    case Command::uploadFiles:
      return upload(m_services.chooseFiles(local), pane(Side::server).path()), true;
    case Command::uploadAny:
      return upload(m_services.chooseFilesAndFolders(local), pane(Side::server).path()), true;
    case Command::cancel:
      return m_services.cancel(), true;
    case Command::cancelAll:
      return m_services.cancelAll(), true;
    case Command::retryFailed:
      return m_services.retryFailed(), true;
    case Command::clearDone:
      return m_services.clearDone(), true;
    case Command::help:
      return m_services.showHelp(), true;
    case Command::about:
      return m_services.showAbout(), true;
    default:
      return false;
  }
}

std::wstring MainWindow::join(Side side, const std::wstring& name) const {
  return pathOn(side, pane(side).path(), name);
}

std::vector<Place> MainWindow::selectedPlaces(Side side) const {
  std::vector<Place> places;
  for (const Item& item : pane(side).selected())
    places.push_back({join(side, item.name), item.isFolder, item.size});
  return places;
}

// A folder is entered, also the one above, a file transferred.
void MainWindow::open() {
  if (pane(m_active).isParentSelected()) return goToParent(m_active);
  const std::vector<Item> chosen = pane(m_active).selected();
  if (chosen.size() != 1) return;
  if (chosen.front().isFolder) return go(m_active, join(m_active, chosen.front().name));
  execute(Command::transfer);
}

// The folder that was left is the one that is selected.
void MainWindow::goToParent(Side side) {
  const std::wstring path = pane(side).path();
  const std::wstring parent = parentOn(side, path);
  if (!pane(side).isShown() || parent == path) return;
  m_toSelect[static_cast<std::size_t>(side)] = lastPart(path);
  go(side, parent);
}

void MainWindow::transfer(Side from, const std::wstring& toFolder) {
  const std::vector<Place> places = selectedPlaces(from);
  if (places.empty()) return;
  if (from == Side::local) return m_services.upload(places, toFolder);
  m_services.download(places, toFolder);
}

void MainWindow::upload(const std::vector<Place>& places, const std::wstring& toFolder) {
  if (!places.empty() && m_isConnected) m_services.upload(places, toFolder);
}

void MainWindow::askAndCopy(bool isMove) {
  const std::vector<Place> places = selectedPlaces(Side::server);
  const bool isOne = places.size() == 1;
  const std::wstring what = isOne ? lastPart(places.front().path) : std::to_wstring(places.size());
  const Text one = isMove ? Text::askMoveOne : Text::askCopyOne;
  const Text many = isMove ? Text::askMoveMany : Text::askCopyMany;
  const std::wstring start = isOne ? places.front().path : pane(Side::server).path();
  const auto to = askText(m_window, text(isOne ? one : many, {what}), start, &isPath);
  if (!to || *to == start) return;
  if (isMove) return m_services.move(places, *to);
  m_services.copy(places, *to);
}

void MainWindow::askAndCreateFolder() {
  const Side side = m_active;
  const auto name = askText(m_window, text(Text::askNewFolder), {}, &isGoodName);
  if (!name) return;
  m_toSelect[static_cast<std::size_t>(side)] = *name;
  m_services.createFolder(side, join(side, *name));
}

void MainWindow::askAndRemove() {
  const Side side = m_active;
  const std::vector<Place> places = selectedPlaces(side);
  const std::wstring question = deleteQuestion(places, side);
  const UINT style = MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2;
  if (MessageBoxW(m_window, question.c_str(), text(Text::programName), style) == IDYES) {
    m_services.remove(side, places);
  }
}

void MainWindow::rename(Side side, const Item& item, const std::wstring& name) {
  if (!isGoodName(name)) return showMessage(text(Text::badName));
  m_toSelect[static_cast<std::size_t>(side)] = name;
  m_services.rename(side, join(side, item.name), join(side, name));
}

bool MainWindow::isBottomFocused() const {
  const HWND focus = GetFocus();
  return m_bottom.window != nullptr && (focus == m_bottom.window || IsChild(m_bottom.window, focus));
}

// The two lists and what is below them, in a circle in either direction.
void MainWindow::focusNext() {
  const int places = m_bottom.window != nullptr && m_bottom.focus ? 3 : 2;
  const int now = isBottomFocused() ? 2 : static_cast<int>(m_active);
  const int next = (now + (GetKeyState(VK_SHIFT) < 0 ? places - 1 : 1)) % places;
  if (next == 2) return m_bottom.focus();
  pane(Side{next}).focusList();
}

}  // namespace browse
