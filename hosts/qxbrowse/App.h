// SPDX-License-Identifier: MIT
// The program behind the main window: who does what the user asks for.
#pragma once

#include "hosts/qxbrowse/MainWindow.h"
#include "hosts/qxbrowse/Services.h"

namespace browse {

class App : public Services {
 public:
  App() : m_window(*this) {}

  // Returns when the window has closed; the code that the program ends with.
  int run(int how);

  void connect() override {}
  void disconnect() override {}
  void list(Side side, const std::wstring& path) override;
  void createFolder(Side side, const std::wstring& path) override;
  void rename(Side side, const std::wstring& from, const std::wstring& to) override;
  void remove(Side side, const std::vector<Place>& places) override;
  void upload(const std::vector<Place>&, const std::wstring&) override {}
  void download(const std::vector<Place>&, const std::wstring&) override {}
  void copy(const std::vector<Place>&, const std::wstring&) override {}
  void move(const std::vector<Place>&, const std::wstring&) override {}
  void cancel() override {}
  void cancelAll() override {}
  void retryFailed() override {}
  void clearDone() override {}
  std::wstring chooseLocalFolder(const std::wstring&) override { return {}; }
  std::vector<Place> chooseFiles(const std::wstring&) override { return {}; }
  std::vector<Place> chooseFilesAndFolders(const std::wstring&) override { return {}; }
  void showHelp() override {}
  void showAbout() override;
  void end() override {}

 private:
  template <typename Change>
  void changeLocal(const std::wstring& path, Change&& change);

  MainWindow m_window;
};

}  // namespace browse
