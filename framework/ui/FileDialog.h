// SPDX-License-Identifier: MIT
// The system's file dialog under the framework's usual name: the shell's newer one (IFileOpenDialog), or the
// classic one with a hook when the newer style was not asked for, when the record's size was changed after
// construction, or when the record has a template. With the classic dialog m_hWnd is the inner window, which
// is a child of the real dialog; the newer dialog calls none of the handlers.
#pragma once

#include <cstddef>
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

  // Runs the dialog: IDOK or IDCANCEL. What leaves a message handler of this thread meanwhile, be it the
  // owner's, ends the dialog and is rethrown. Throws std::runtime_error when the newer dialog cannot be made,
  // and on a thread of a multithreaded apartment, where it would run on another thread and freeze the
  // caller's windows.
  virtual int DoModal();

  // The folder shown: while the classic dialog is up from the dialog, afterwards the chosen files' one. ""
  // for a place that is no folder of the file system, and while the newer dialog is up.
  [[nodiscard]] std::string GetFolderPath() const;
  // The full name in the dialog; after it the (first) chosen one.
  [[nodiscard]] std::string GetPathName() const;
  // The walk over the chosen files; each step yields a full path name.
  [[nodiscard]] POSITION GetStartPosition() const noexcept;
  std::string GetNextPathName(POSITION& position) const;
  // False when the code page lacks a character of the newer dialog's folder or of a chosen name: what stands
  // for it names nothing.
  [[nodiscard]] bool NamesAreExact() const noexcept { return m_namesAreExact; }

  // The classic dialog's record, valid from construction on. Its name buffer is larger when several files may
  // be chosen; a selection that does not fit ends the dialog as a cancel.
  OPENFILENAMEA m_ofn{};

 protected:
  const bool m_bOpenFileDialog;

  // The owner that the dialog may have: the given parent, or the first window above it that is no child. The
  // topmost window above that one is disabled until PostModal, which also ends every attachment.
  HWND PreModal() noexcept;
  void PostModal() noexcept;
  // Everything of DoModal for the classic dialog, with `record` in place of m_ofn. Sets its owner.
  int RunClassic(OPENFILENAMEA& record);

  // The base binds the fields to the controls.
  virtual bool OnInitDialog();
  virtual void OnInitDone() {}
  virtual void OnFolderChange() {}
  // Nonzero keeps the dialog open.
  virtual int OnFileNameOK() { return 0; }

  bool OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) override;

 private:
  struct ModalScope;
  static UINT_PTR CALLBACK hook(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  [[nodiscard]] std::string ask(UINT message) const;
  [[nodiscard]] bool isNewer() const noexcept;
  int runNewer();
  void forgetChosenNames() noexcept;
  void takeChosenNames(const OPENFILENAMEA& record);
  void cancel() const noexcept;

  const bool m_newerStyle;
  const HWND m_parent;
  HWND m_top = nullptr;  // disabled by PreModal
  std::string m_defaultExtension;
  std::string m_filter;
  std::vector<char> m_nameBuffer;
  std::string m_folder;              // chosen
  std::vector<std::string> m_paths;  // chosen
  bool m_namesAreExact = true;
};
