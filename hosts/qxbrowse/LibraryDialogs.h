// SPDX-License-Identifier: MIT
// The dialogs and the help launcher of the library (QXDialogs.h), with wide texts and without buffers.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "QXDialogs.h"
#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// The page that tells the same as the help file, where a package has it for the program's folder: the one for
// a browser, or else the text. L"docs/qxbrowse.md" where there is none.
std::wstring helpPage(const std::filesystem::path& programFolder);

class LibraryDialogs {
 public:
  // Of the loaded library, which it keeps. Throws std::runtime_error where one of the exports is missing.
  explicit LibraryDialogs(std::shared_ptr<void> library);

  // Modal. Nothing: the user chose none.
  [[nodiscard]] std::optional<std::wstring> chooseFolder(const std::wstring& start) const;

  struct Choice {
    std::vector<std::wstring> paths;
    bool isTooLong = false;  // the library has no room for what was chosen
  };
  [[nodiscard]] Choice chooseFiles(const std::wstring& start) const;
  [[nodiscard]] Choice chooseFilesAndFolders(const std::wstring& start, const std::wstring& title,
                                             const std::wstring& ok) const;

  // False: there is no such file, so there is nothing to show.
  [[nodiscard]] bool showHelp(HWND owner, const std::wstring& file) const;

 private:
  struct Selection;

  std::shared_ptr<void> m_library;
  PfnQXSelectFolder m_selectFolder = nullptr;
  PfnDoOpenFileDialog m_openFile = nullptr;
  PfnDoOpenDirFileDialog m_openDirFile = nullptr;
  PfnDoFreeDirFileDialog m_freeDialog = nullptr;
  PfnDoHtmlHelp m_help = nullptr;
};

}  // namespace browse
