// SPDX-License-Identifier: MIT
// What the program does on the server.
#include <algorithm>

#include "hosts/qxbrowse/App.h"
#include "hosts/qxbrowse/jobs/ServerItems.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/Utf8.h"

namespace browse {
namespace {

std::vector<RemotePlace> remotePlaces(const std::vector<Place>& places) {
  std::vector<RemotePlace> remote;
  remote.reserve(places.size());
  for (const Place& place : places) remote.push_back({toLibrary(place.path), place.isFolder});
  return remote;
}

std::vector<std::filesystem::path> localPlaces(const std::vector<Place>& places) {
  std::vector<std::filesystem::path> local;
  local.reserve(places.size());
  for (const Place& place : places) local.emplace_back(place.path);
  return local;
}

qx::Result<ItemList> readFolder(const Session& session, const std::string& path, Sorting sorting) {
  const qx::Result<std::vector<QXDirEntry>> entries = listFolder(session, path);
  if (!entries) return {std::nullopt, entries.report()};
  return {ItemList(itemsOf(*entries), sorting), entries.report()};
}

// The library takes a folder that is there for a made one.
qx::Result<qx::Done> makeFolder(const Session& session, const std::string& path) {
  const qx::Result<bool> isThere = session.client.directoryExists(path);
  if (!isThere || !*isThere) return session.client.createDirectory(path);
  qx::Report report = isThere.report();
  report.text = toLibrary(text(Text::folderIsThere));
  return {std::nullopt, report};
}

// A change that failed in parts is one that failed, and tells of the first.
qx::Result<qx::Done> whole(const qx::Result<Problems>& result) {
  if (!result) return {std::nullopt, result.report()};
  if (result->empty()) return {qx::Done{}, result.report()};
  qx::Report report = result.report();
  report.text = result->front().path + ": " + result->front().text;
  return {std::nullopt, report};
}

std::wstring nameOf(const Site& site) { return fromUtf8(site.name.empty() ? site.host : site.name); }

}  // namespace

void App::connect() {
  if (const auto to = m_sites.ask(m_window.handle())) logIn(*to);
}

void App::logIn(const Destination& to) {
  m_window.showMessage(text(Text::statusConnecting, {nameOf(to.site)}));
  const qx::Login login = loginOf(to.site, to.password);
  m_background.connect(login, [this, to, login](const qx::Result<qx::Done>& done) {
    if (done) return enter(to, login);
    showReport(nameOf(to.site), done.report());
    if (const auto again = m_sites.askAfterFailure(m_window.handle(), to, done.report())) logIn(*again);
  });
}

void App::enter(const Destination& at, const qx::Login& login) {
  m_login = std::make_shared<qx::Login>(login);
  m_window.showConnected(nameOf(at.site));
  if (!at.site.localFolder.empty()) m_window.go(Side::local, fromUtf8(at.site.localFolder));
  m_window.go(Side::server, at.site.remoteFolder.empty() ? L"/" : fromUtf8(at.site.remoteFolder));
}

void App::disconnect() {
  m_background.cancelAll();
  m_background.disconnect([](const qx::Result<qx::Done>&) {});
  m_window.showDisconnected();
}

void App::showReport(const std::wstring& what, const qx::Report& report) {
  const std::wstring why = report.isCancelled ? text(Text::statusCancelled) : fromLibrary(report.text);
  const std::wstring line = text(Text::statusFailed, {what, why});
  std::vector<std::string> lines{toLibrary(line)};
  if (report.number != 0) {
    lines.push_back(toLibrary(text(Text::reportNumber, {std::to_wstring(report.number)})));
  }
  if (!report.message.empty()) lines.push_back("    " + report.message);
  m_work.report(std::move(lines));
  m_window.showMessage(line);
}

// The first in the status bar, all of them in the pane.
void App::showProblems(const Problems& problems) {
  if (problems.empty()) return;
  std::vector<std::string> lines;
  for (const hosts::Problem& problem : problems) lines.push_back(problem.path + ": " + problem.text);
  m_window.showMessage(fromLibrary(lines.front()));
  m_work.report(std::move(lines));
}

void App::listServer(const std::wstring& path, Sorting sorting) {
  m_background.run([remote = toLibrary(path),
                    sorting](const Session& session) { return readFolder(session, remote, sorting); },
                   [this, path](qx::Result<ItemList> items) {
                     if (items) return m_window.showFolder(Side::server, path, std::move(items).value());
                     const qx::Report& report = items.report();
                     m_window.showFolderFailed(
                         Side::server, path,
                         report.isCancelled ? text(Text::statusCancelled) : fromLibrary(report.text));
                   });
}

// The folder is listed again in either case, and what went wrong is told behind that.
template <typename Change>
void App::changeServer(const std::wstring& what, Change change) {
  m_background.run(std::move(change), [this, what](const qx::Result<qx::Done>& done) {
    m_window.refresh(Side::server, m_window.pane(Side::server).path());
    if (!done) showReport(what, done.report());
  });
}

void App::createServerFolder(const std::wstring& path) {
  changeServer(path,
               [remote = toLibrary(path)](const Session& session) { return makeFolder(session, remote); });
}

void App::renameOnServer(const std::wstring& from, const std::wstring& to) {
  changeServer(to, [old = toLibrary(from), now = toLibrary(to)](const Session& session) {
    return whole(movePlaces(session, {{old, false}}, now));
  });
}

void App::removeOnServer(const std::vector<Place>& places) {
  changeServer(text(Text::commandDelete), [remote = remotePlaces(places)](const Session& session) {
    return whole(removePlaces(session, remote));
  });
}

void App::move(const std::vector<Place>& places, const std::wstring& to) {
  changeServer(to, [remote = remotePlaces(places), target = toLibrary(to)](const Session& session) {
    return whole(movePlaces(session, remote, target));
  });
}

template <typename Expand>
void App::expand(const std::wstring& what, Expand expand, const ReplaceQuestions::Then& then) {
  m_background.run(std::move(expand), [this, what, then](const qx::Result<Expansion>& expansion) {
    if (!expansion) return showReport(what, expansion.report());
    showProblems(expansion->problems);
    m_questions.ask(m_window.handle(), expansion->transfers, then);
  });
}

ReplaceQuestions::Then App::intoQueue() {
  return [this, login = m_login](std::vector<Transfer> transfers) {
    for (Transfer& transfer : transfers) transfer.server = login;
    m_queue.add(std::move(transfers));
  };
}

// Meanwhile something may have come where they go to.
void App::retry(std::vector<Transfer> transfers) {
  expand(
      text(Text::commandRetry),
      [transfers = std::move(transfers), login = m_login](const Session& session) {
        return lookAgain(session, transfers, login);
      },
      [this](const std::vector<Transfer>& again) { m_queue.retry(again); });
}

void App::upload(const std::vector<Place>& places, const std::wstring& toFolder) {
  expand(
      toFolder,
      [local = localPlaces(places), target = toLibrary(toFolder)](const Session& session) {
        return expandUpload(session, local, target);
      },
      intoQueue());
}

void App::download(const std::vector<Place>& places, const std::wstring& toFolder) {
  const std::filesystem::path target = toFolder;
  expand(
      toFolder,
      [remote = remotePlaces(places), target](const Session& session) {
        return expandDownload(session, remote, target);
      },
      intoQueue());
}

void App::copy(const std::vector<Place>& places, const std::wstring& to) {
  expand(
      to,
      [remote = remotePlaces(places), target = toLibrary(to)](const Session& session) {
        return expandCopy(session, remote, target);
      },
      intoQueue());
}

// The sides show what has come when the last one has; what went wrong is told behind that.
void App::transferEnded(const TransferRow& row) {
  if (!m_queue.hasWork()) {
    for (const Side side : {Side::local, Side::server}) m_window.refresh(side, m_window.pane(side).path());
  }
  if (row.text.empty()) return;
  const std::wstring line =
      text(Text::statusFailed, {queueCell(row, QueueColumn::name), fromLibrary(row.text)});
  m_work.report({toLibrary(line)});
  m_window.showMessage(line);
}

}  // namespace browse
