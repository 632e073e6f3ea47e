// SPDX-License-Identifier: MIT
// A classic file dialog with a box of the folders used last. Its template "IDD_XFILEDIALOG" comes with the
// host's program: beside the place for the system's controls it has the history box 1002, a drop-down combo
// box, and that one's label 1001. The history is kept in the section "FolderHistory" of the application's
// profile.
#pragma once

#include <string>

#include "dialogs/HistoryCombo.h"
#include "framework/ui/FileDialog.h"

// Which of the system's layouts the dialog has. The new one has a record of its own size.
enum class LayoutMode : DWORD { bySystem, oldLayout, newLayout };

// The record that the system's dialog is called with.
struct ExtendedFileRecord {
  OPENFILENAMEA base;
  unsigned char more[16];
};
static_assert(sizeof(OPENFILENAMEA) == 152 && sizeof(ExtendedFileRecord) == 168);

class CXFileDialog : public CFileDialog {
 public:
  // As for CFileDialog.
  CXFileDialog(bool open, const char* defaultExtension, const char* fileName, DWORD flags, const char* filter,
               HWND parent);

  // What the system's call answers; IDCANCEL for 0. Afterwards m_ofn has what the system's dialog left in the
  // record. Rethrows what left a handler.
  int DoModal() override;

  std::string m_strTitle;  // empty: the system's
  LayoutMode m_nLayoutMode = LayoutMode::bySystem;

 protected:
  bool OnInitDialog() override;
  int OnFileNameOK() override;
  void DoDataExchange(CDataExchange* exchange) override;
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
  bool OnCommand(WPARAM wParam, LPARAM lParam) override;
  bool OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) override;

 private:
  [[nodiscard]] bool hasNewLayout() const noexcept;
  void clearBehindInitialName() const noexcept;
  void takeRecordBack() noexcept;

  [[nodiscard]] int nameBoxId() const noexcept;
  [[nodiscard]] HWND control(int id) const noexcept;
  [[nodiscard]] LONG findColumn() const noexcept;
  void arrangeControls() const noexcept;
  void moveFocus() const noexcept;
  void goToPickedFolder() const;
  void setNameText(const char* text) const noexcept;

  CHistoryCombo m_wndHistory{false};
  const DWORD m_nFlags;
  LONG m_nColumn;  // where the boxes start, in the dialog's client co-ordinates
  ExtendedFileRecord m_record{};
};
