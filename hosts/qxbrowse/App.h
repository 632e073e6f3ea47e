// SPDX-License-Identifier: MIT
// The program behind the main window: who does what the user asks for. All of it on the window's thread.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "hosts/qxbrowse/LibraryDialogs.h"
#include "hosts/qxbrowse/jobs/Background.h"
#include "hosts/qxbrowse/jobs/LocalWork.h"
#include "hosts/qxbrowse/jobs/Mailbox.h"
#include "hosts/qxbrowse/jobs/ProtocolLog.h"
#include "hosts/qxbrowse/jobs/ServerJobs.h"
#include "hosts/qxbrowse/jobs/TransferQueue.h"
#include "hosts/qxbrowse/pane/ReplaceQuestion.h"
#include "hosts/qxbrowse/pane/WorkPane.h"
#include "hosts/qxbrowse/sites/Sites.h"
#include "hosts/qxbrowse/window/MainWindow.h"
#include "hosts/qxbrowse/window/Services.h"

namespace browse {

class App : public Services {
 public:
  // Throws std::runtime_error.
  App(const qx::Exports& exports, const std::filesystem::path& siteFile);

  // Returns when the window has closed; the code that the program ends with.
  int run(int how);
  // What connect() does behind its question.
  void logIn(const Destination& to);

  void connect() override;
  void disconnect() override;
  void list(Side side, const std::wstring& path) override;
  void createFolder(Side side, const std::wstring& path) override;
  void rename(Side side, const std::wstring& from, const std::wstring& to) override;
  void remove(Side side, const std::vector<Place>& places) override;
  void upload(const std::vector<Place>& places, const std::wstring& toFolder) override;
  void download(const std::vector<Place>& places, const std::wstring& toFolder) override;
  void copy(const std::vector<Place>& places, const std::wstring& to) override;
  void move(const std::vector<Place>& places, const std::wstring& to) override;
  void cancel() override;
  void cancelAll() override;
  void retryFailed() override { retry(m_queue.list().ended()); }
  void clearDone() override { m_queue.clearDone(); }
  std::wstring chooseLocalFolder(const std::wstring& start) override;
  std::vector<Place> chooseFiles(const std::wstring& start) override;
  std::vector<Place> chooseFilesAndFolders(const std::wstring& start) override;
  void showHelp() override;
  void showAbout() override;
  void end() override;

 private:
  using Letter = std::function<void()>;

  [[nodiscard]] bool takeKey(const MSG& key);
  void enter(const Destination& at, const qx::Login& login);
  void showLocal(const std::wstring& path, LocalWork::Answer answer);
  void listServer(const std::wstring& path, Sorting sorting);
  void createServerFolder(const std::wstring& path);
  void renameOnServer(const std::wstring& from, const std::wstring& to);
  void removeOnServer(const std::vector<Place>& places);
  void showReport(const std::wstring& what, const qx::Report& report);
  void showProblems(const Problems& problems);
  void transferEnded(const TransferRow& row);
  [[nodiscard]] std::vector<Place> placesOf(const LibraryDialogs::Choice& choice) const;
  [[nodiscard]] bool mayClose() const;
  void setPlacementAside();

  template <typename Change>
  void changeLocal(const std::wstring& path, Change&& change);
  template <typename Change>
  void changeServer(const std::wstring& what, Change change);
  // Finds out what is to be transferred, asks about what would be replaced, and gives the rest to `then`.
  template <typename Expand>
  void expand(const std::wstring& what, Expand expand, const ReplaceQuestions::Then& then);
  [[nodiscard]] ReplaceQuestions::Then intoQueue();
  void retry(std::vector<Transfer> transfers);

  const std::filesystem::path m_placementFile;
  LibraryDialogs m_dialogs;
  Mailbox m_mailbox;
  Sites m_sites;
  MainWindow m_window;
  WorkPane m_work;
  ProtocolLog m_log;
  TransferQueue m_queue;
  ReplaceQuestions m_questions;
  LocalWork m_local;
  Background m_background;
  std::shared_ptr<const qx::Login> m_login;
};

}  // namespace browse
