// SPDX-License-Identifier: MIT
// What the main window asks of those that do the work: sites, the background thread, the queue. All functions
// are called on the window's thread and return at once, but for those that show a dialog. Answers come by the
// functions of MainWindow.h, on the same thread.
#pragma once

#include <string>
#include <vector>

#include "hosts/qxbrowse/lists/Items.h"

namespace browse {

class Services {
 public:
  Services() = default;
  virtual ~Services() = default;
  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;

  // Asks for a site and logs in; then MainWindow::showConnected and showFolder.
  virtual void connect() = 0;
  virtual void disconnect() = 0;

  // Then MainWindow::showFolder, or showMessage with what went wrong.
  virtual void list(Side side, const std::wstring& path) = 0;

  // Then a new listing of the folder.
  virtual void createFolder(Side side, const std::wstring& path) = 0;
  virtual void rename(Side side, const std::wstring& from, const std::wstring& to) = 0;
  virtual void remove(Side side, const std::vector<Place>& places) = 0;

  // Into the queue, to the folder on the other side.
  virtual void upload(const std::vector<Place>& local, const std::wstring& serverFolder) = 0;
  virtual void download(const std::vector<Place>& server, const std::wstring& localFolder) = 0;
  // On the server. `to` is a folder for several places, else the new path.
  virtual void copy(const std::vector<Place>& places, const std::wstring& to) = 0;
  virtual void move(const std::vector<Place>& places, const std::wstring& to) = 0;

  // What the user waits for now: the running job, then the running entry of the queue.
  virtual void cancel() = 0;
  virtual void cancelAll() = 0;
  virtual void retryFailed() = 0;
  virtual void clearDone() = 0;

  // The library's dialogs. Empty when the user chose nothing.
  virtual std::wstring chooseLocalFolder(const std::wstring& start) = 0;
  virtual std::vector<Place> chooseFiles(const std::wstring& start) = 0;
  virtual std::vector<Place> chooseFilesAndFolders(const std::wstring& start) = 0;
  virtual void showHelp() = 0;
  virtual void showAbout() = 0;

  // The window closes, or the session of the user: ends what runs; then MainWindow::close, within a second.
  // What must not be lost is kept when this returns, since the system may end the process then. Nothing else
  // is asked for any more.
  virtual void end() = 0;
};

}  // namespace browse
