// SPDX-License-Identifier: MIT
// The system's explorer-style file dialog as a picker of a folder, or of a folder and the items selected in
// it. Its list can be without folders or without files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "framework/ui/Edit.h"
#include "framework/ui/FileDialog.h"

class CDirFileOpen : public CFileDialog {
 public:
  // `okText` is not copied and `reserved` not used; both are only kept. `mode` is the list filter. The other
  // texts may be null and are copied.
  CDirFileOpen(const char* title, const char* okText, const void* reserved, bool files, bool open,
               std::uint32_t mode, const char* initialDirectory, DWORD flags, const char* filter,
               HWND parent);
  ~CDirFileOpen() override;

  // What ends the dialog otherwise than by an OK that has set a folder is a cancel: the system reports the
  // end by a WM_QUIT as a success.
  int DoModal() override;

  // The confirmed folder, with a backslash behind it; "" for one that the code page cannot tell.
  [[nodiscard]] std::string GetFolder() const { return m_strFolder.value_or(""); }
  void SetFolder(const std::string& folder) { m_strFolder = folder; }
  void SetTitle(const char* title) { m_strTitle = title; }
  // Whether the code page has all characters of the folder that is shown.
  [[nodiscard]] bool FolderIsExact() const;
  // The names that were selected when the list went away; module-wide.
  static std::vector<std::wstring>& SelectedNames() noexcept;

  char* m_pPathList = nullptr;  // owned; made by MakePathList

 protected:
  void OnInitDone() override;
  void OnFolderChange() override;

 private:
  const bool m_bFiles;
  std::optional<std::string> m_strFolder;
  CEdit* m_pFolderEdit = nullptr;  // owned
  std::string m_strTitle;
  const char* m_pszOkText;
  const void* m_pReserved;
  std::string m_initialDirectory;
};
