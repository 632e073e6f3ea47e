// SPDX-License-Identifier: MIT
#include "dialogs/DirFileOpen.h"

#include <algorithm>
#include <memory>

#include "dialogs/DirFileLayout.h"
#include "dialogs/DirFileState.h"
#include "dialogs/ListHook.h"
#include "dialogs/OkInterceptor.h"
#include "framework/ModuleState.h"
#include "framework/ui/WideText.h"

namespace {

// The record without the additions of Windows 2000: it asks for the classic dialog without the places bar.
constexpr DWORD kOlderRecordSize = 136;

// In folder mode a pattern that no file matches.
const char* initialName(bool files, const char* filter) noexcept {
  if (!files) return "*..*";
  return filter != nullptr ? nullptr : "*.*";
}

// Of the dialog; "" for a place that is none of the file system.
std::wstring folderShown(HWND dialog) {
  std::vector<BYTE> list(static_cast<std::size_t>(
      std::max<LRESULT>(SendMessageA(dialog, CDM_GETFOLDERIDLIST, 0, 0), sizeof(ITEMIDLIST))));
  SendMessageA(dialog, CDM_GETFOLDERIDLIST, list.size(), reinterpret_cast<LPARAM>(list.data()));
  wchar_t path[MAX_PATH] = L"";
  SHGetPathFromIDListW(reinterpret_cast<const ITEMIDLIST*>(list.data()), path);
  return path;
}

}  // namespace

CDirFileOpen::CDirFileOpen(const char* title, const char* okText, const void* reserved, bool files, bool open,
                           std::uint32_t mode, const char* initialDirectory, DWORD flags, const char* filter,
                           HWND parent)
    : CFileDialog(open, nullptr, initialName(files, filter), flags, filter, parent),
      m_bFiles(files),
      m_strTitle(title != nullptr ? title : ""),
      m_pszOkText(okText),
      m_pReserved(reserved),
      m_initialDirectory(initialDirectory != nullptr ? initialDirectory : "") {
  m_ofn.lStructSize = kOlderRecordSize;
  if (initialDirectory != nullptr) m_ofn.lpstrInitialDir = m_initialDirectory.c_str();
  AddModuleRef();
  g_dirFileState.filter = mode;
}

CDirFileOpen::~CDirFileOpen() {
  delete m_pFolderEdit;
  delete[] m_pPathList;
  const bool anotherIsUp = g_dirFileState.dialog != nullptr && g_dirFileState.dialog != this;
  if (!anotherIsUp) RemoveListHook();
  ReleaseModuleRef();
}

int CDirFileOpen::DoModal() {
  m_strFolder.reset();
  const int result = CFileDialog::DoModal();
  return m_strFolder ? result : IDCANCEL;
}

bool CDirFileOpen::FolderIsExact() const { return exactNarrowText(folderShown(GetParent())).has_value(); }

std::vector<std::wstring>& CDirFileOpen::SelectedNames() noexcept { return g_dirFileState.selectedNames; }

void CDirFileOpen::OnInitDone() {
  const HWND dialog = GetParent();
  PlaceButtonsAndList(dialog);
  SetDlgItemTextA(dialog, IDOK, m_pszOkText);
  SetWindowTextA(dialog, m_strTitle.c_str());
  InstallOkInterceptor(*this);
  PlaceFileNameLabel(dialog);

  auto edit = std::make_unique<CEdit>();
  MakeFolderEdit(dialog, *edit, m_initialDirectory.c_str());
  delete m_pFolderEdit;
  m_pFolderEdit = edit.release();

  if (m_bFiles && m_ofn.lpstrFilter != nullptr) {
    PlaceFileTypes(dialog, *m_pFolderEdit);
  } else {
    HideFileTypes(dialog);
  }
  SelectedNames().clear();
  InstallListHook();
  CentreOnOwner(dialog);
}

// What was selected in another folder, the folder that was opened above all, names nothing in this one.
void CDirFileOpen::OnFolderChange() {
  if (DirFileState* const state = DirFileStateOf(GetParent())) {
    state->selectedNames.clear();
    state->items = ShownItems(GetParent());
    state->unseen = DirFileState::kAll;
  }
  if (m_pFolderEdit != nullptr && GetParent() != nullptr)
    m_pFolderEdit->SetWindowText(GetFolderPath().c_str());
}
