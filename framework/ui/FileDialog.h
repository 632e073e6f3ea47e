// SPDX-License-Identifier: MIT
// The system's file dialog under the framework's usual name: the shell's newer one (IFileOpenDialog), or the
// classic one with a hook when the newer style was not asked for, when the record's size was changed after
// construction, or when the record has a template. With the classic dialog m_hWnd is the inner window, which
// is a child of the real dialog.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "framework/ui/Wnd.h"
// Only now:
#include <commdlg.h>

// A place in the walk over the selected items; null is the end.
using POSITION = const void*;

class CFileDialog : public CWnd {
 public:
  // Texts may be null and are copied. `filter`: pairs "text|pattern|...||".
  CFileDialog(bool open, const char* defaultExtension, const char* fileName, DWORD flags, const char* filter,
              HWND parent, DWORD size = 0, bool newerStyle = true);
  ~CFileDialog() override;

  // Runs the dialog: IDOK or IDCANCEL. Rethrows what left a handler; throws std::runtime_error when the
  // newer dialog cannot be made.
  virtual int DoModal();

  // The folder shown: while the dialog is up from the dialog, afterwards the chosen files' one.
  [[nodiscard]] std::string GetFolderPath() const;
  // The full name in the dialog; after it the (first) chosen one.
  [[nodiscard]] std::string GetPathName() const;
  // The walk over the chosen files; each step yields a full path name.
  [[nodiscard]] POSITION GetStartPosition() const noexcept;
  std::string GetNextPathName(POSITION& position) const;

  // The classic dialog's record, valid from construction on.
  OPENFILENAMEA m_ofn{};

 protected:
  virtual bool OnInitDialog() { return true; }
  virtual void OnInitDone() {}
  virtual void OnFolderChange() {}
  // Nonzero keeps the dialog open.
  virtual int OnFileNameOK() { return 0; }
};
