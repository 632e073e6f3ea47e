// SPDX-License-Identifier: MIT
// The shell's folder browser. The folder that it starts at is module-wide, so one dialog is shown at a time.
#pragma once

#include <string>

#include "framework/ui/ModalRun.h"
#include "framework/ui/Wnd.h"

class CFolderDlg {
 public:
  // An empty `startFolder` stands for the process's current directory. `parent` may be null.
  CFolderDlg(BOOL noNewFolder, const std::string& startFolder, CWnd* parent);
  virtual ~CFolderDlg() = default;
  CFolderDlg(const CFolderDlg&) = delete;
  CFolderDlg& operator=(const CFolderDlg&) = delete;

  // IDOK when a folder was chosen, else IDCANCEL; also at once where the thread cannot be a single-threaded
  // apartment. What leaves a handler of the parent ends the dialog and is rethrown.
  virtual INT_PTR DoModal();

  // The instruction above the tree.
  void SetTitle(const std::string& title) { m_strTitle = title; }
  [[nodiscard]] std::string GetPath() const { return m_strPath; }

 private:
  void browse(ModalRun& run);

  BOOL m_bNoNewFolder;
  CWnd* m_pParent;
  std::string m_strTitle;
  std::string m_strPath;
};

// Lets the user choose a folder, starting at the one in `path`, which gets the chosen one (up to 260
// characters). False, and `path` unchanged, without a choice or for null.
bool SelectFolder(char* path);
