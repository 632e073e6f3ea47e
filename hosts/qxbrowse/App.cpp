// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/App.h"

#include "QXVersion.h"
#include "hosts/qxbrowse/jobs/LocalFolder.h"
#include "hosts/qxbrowse/sites/SiteMessages.h"
#include "hosts/qxbrowse/ui/Keyboard.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/Utf8.h"
#include "hosts/shared/LibraryFile.h"

namespace browse {
namespace {

constexpr const wchar_t* kPlacementFile = L"window.ini";  // beside the sites
constexpr const wchar_t* kHelpFile = L"qxbrowse.chm";     // beside the program

}  // namespace

App::App(const qx::Exports& exports, const std::filesystem::path& siteFile)
    : m_placementFile(siteFile.parent_path() / kPlacementFile),
      m_dialogs(exports.library),
      m_sites(siteFile),
      m_window(*this),
      m_log(m_mailbox, [this](std::vector<std::string> lines) { m_work.tellProtocol(std::move(lines)); }),
      m_queue(exports,
              {.letters = {.post = [this](Letter letter) { m_mailbox.post(std::move(letter)); },
                           .readUntil = &Mailbox::readUntil},
               .line = [this](const char* line) { m_log.add(line); },
               .changed = [this] { m_work.queueChanged(); },
               .ended = [this](const TransferRow& row) { transferEnded(row); },
               .paused = [this](const TransferRow&) { m_window.showMessage(text(Text::queuePaused)); }}),
      m_local(
          [this](Letter letter) { m_mailbox.post(std::move(letter)); },
          [this](const std::wstring& path, LocalWork::Answer answer) { showLocal(path, std::move(answer)); }),
      m_background(
          exports, [this](Letter letter) { m_mailbox.post(std::move(letter)); },
          [this](const char* line) { m_log.add(line); }) {
  m_window.setMayClose([this] { return mayClose(); });
}

int App::run(int how) {
  m_window.create();
  m_window.setBottomPane(m_work.create(
      m_window.handle(), m_queue, [this](std::vector<Transfer> transfers) { retry(std::move(transfers)); }));
  const Placement placement = readPlacement(m_placementFile);
  m_window.setPlacement(placement);
  m_work.setWidths(placement.queue);
  m_window.show(placement.isMaximized ? SW_SHOWMAXIMIZED : how);
  const Keyboard keyboard(m_window.handle(), [this](const MSG& key) { return takeKey(key); });
  m_window.go(Side::local, homeFolder());
  if (placement.isBroken) setPlacementAside();
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

// What somebody has written into it is theirs to mend; the window writes a new one when it closes.
void App::setPlacementAside() {
  std::wstring told;
  try {
    const std::filesystem::path aside = SiteFile(m_placementFile).setAside();
    told = text(Text::placementAside, {m_placementFile.wstring(), aside.wstring()});
  } catch (const std::exception& problem) {
    told = text(Text::statusFailed, {m_placementFile.wstring(), fromLibrary(problem.what())});
  }
  m_work.report({toLibrary(told)});
  m_window.showMessage(told);
}

bool App::takeKey(const MSG& key) {
  const bool isForPane = !m_window.isMovingBorders() && m_work.takeKey(key);
  return isForPane || m_window.translate(key);
}

void App::list(Side side, const std::wstring& path) {
  const Sorting sorting = m_window.pane(side).items().sorting();
  if (side == Side::local) return m_local.read(path, sorting);
  listServer(path, sorting);
}

void App::showLocal(const std::wstring& path, LocalWork::Answer answer) {
  if (const auto* const why = std::get_if<std::wstring>(&answer)) {
    return m_window.showFolderFailed(Side::local, path, *why);
  }
  m_window.showFolder(Side::local, path, std::get<ItemList>(std::move(answer)));
}

// The folder is listed again in either case, and what went wrong is told behind that.
template <typename Change>
void App::changeLocal(const std::wstring& path, Change&& change) {
  std::wstring fault;
  try {
    change();
  } catch (const std::system_error& problem) {
    fault = text(Text::statusFailed, {path, fromLibrary(problem.code().message())});
  }
  m_window.refresh(Side::local, localParent(path));
  if (!fault.empty()) m_window.showMessage(fault);
}

void App::createFolder(Side side, const std::wstring& path) {
  if (side == Side::server) return createServerFolder(path);
  changeLocal(path, [&] { createLocalFolder(path); });
}

void App::rename(Side side, const std::wstring& from, const std::wstring& to) {
  if (side == Side::server) return renameOnServer(from, to);
  changeLocal(from, [&] { renameLocal(from, to); });
}

void App::remove(Side side, const std::vector<Place>& places) {
  if (side == Side::server) return removeOnServer(places);
  changeLocal(places.front().path, [&] { removeLocal(m_window.handle(), places); });
}

// What runs for a listing or a change first: that is what holds the user up.
void App::cancel() {
  if (m_background.isBusy()) return m_background.cancel();
  m_queue.cancel();
}

void App::cancelAll() {
  m_background.cancelAll();
  m_queue.cancelAll();
}

std::wstring App::chooseLocalFolder(const std::wstring& start) {
  return m_dialogs.chooseFolder(start).value_or(std::wstring());
}

std::vector<Place> App::chooseFiles(const std::wstring& start) {
  return placesOf(m_dialogs.chooseFiles(start));
}

std::vector<Place> App::chooseFilesAndFolders(const std::wstring& start) {
  return placesOf(
      m_dialogs.chooseFilesAndFolders(start, text(Text::chooseFilesTitle), text(Text::chooseFilesOk)));
}

std::vector<Place> App::placesOf(const LibraryDialogs::Choice& choice) const {
  if (choice.isTooLong) tell(m_window.handle(), text(Text::chosenTooLong));
  std::vector<Place> places;
  for (const std::wstring& path : choice.paths) places.push_back(localPlace(path));
  return places;
}

void App::showHelp() {
  const std::filesystem::path folder = hosts::programFolder();
  const std::wstring file = folder / kHelpFile;
  if (m_dialogs.showHelp(m_window.handle(), file)) return;
  tell(m_window.handle(), text(Text::helpMissing, {file, helpPage(folder)}));
}

void App::showAbout() { tell(m_window.handle(), text(Text::about, {fromLibrary(QXIP_VERSION)})); }

// Nobody could tell behind the end what is left where.
bool App::mayClose() const {
  if (!m_queue.hasWork()) return true;
  const std::string left = m_queue.leftOnServer();
  const std::wstring part = left.empty() ? L"" : text(Text::askClosePart, {fromLibrary(left)});
  return ask(m_window.handle(), text(Text::askClose) + part);
}

void App::end() {
  m_background.cancelAll();
  m_queue.end([this] { m_window.close(); });
  Placement placement = m_window.placement();
  placement.queue = m_work.queue().widths();
  writePlacement(m_placementFile, placement);
}

}  // namespace browse
