// SPDX-License-Identifier: MIT
#include "dialogs/FolderDlg.h"

#include <cstring>
#include <memory>
#include <utility>

#include "framework/ui/Com.h"
#include "framework/ui/CommonDialogs.h"

namespace {

// Where the next dialog starts; its callback reads it.
std::string g_strStartFolder;

HWND g_hBrowser = nullptr;  // the dialog of the innermost call, once it is there

std::string currentDirectory() {
  char path[MAX_PATH + 1] = "";
  const DWORD length = GetCurrentDirectoryA(sizeof path, path);
  return length < sizeof path ? std::string(path, length) : std::string();
}

int CALLBACK onBrowse(HWND dialog, UINT message, LPARAM item, LPARAM) noexcept {
  if (message == BFFM_INITIALIZED) g_hBrowser = dialog;
  if (message == BFFM_INITIALIZED && !g_strStartFolder.empty()) {
    SendMessageA(dialog, BFFM_SETSELECTIONA, TRUE, reinterpret_cast<LPARAM>(g_strStartFolder.c_str()));
  }
  if (message == BFFM_SELCHANGED && item != 0) {
    char path[MAX_PATH] = "";
    if (SHGetPathFromIDListA(reinterpret_cast<LPCITEMIDLIST>(item), path)) {
      SendMessageA(dialog, BFFM_SETSTATUSTEXTA, 0, reinterpret_cast<LPARAM>(path));
    }
  }
  return 0;
}

ComPtr<IMalloc> taskAllocator() noexcept {
  IMalloc* allocator = nullptr;
  if (CoGetMalloc(1, &allocator) != S_OK) allocator = nullptr;
  return ComPtr<IMalloc>(allocator);
}

}  // namespace

CFolderDlg::CFolderDlg(BOOL noNewFolder, const std::string& startFolder, CWnd* parent)
    : m_bNoNewFolder(noNewFolder), m_pParent(parent) {
  g_strStartFolder = startFolder.empty() ? currentDirectory() : startFolder;
}

INT_PTR CFolderDlg::DoModal() {
  m_strPath.clear();
  ModalRun run;
  {
    const Apartment apartment;
    if (!apartment.Entered()) return IDCANCEL;
    browse(run);
  }
  run.Rethrow();
  return m_strPath.empty() ? IDCANCEL : IDOK;
}

void CFolderDlg::browse(ModalRun& run) {
  const auto allocator = taskAllocator();
  if (allocator == nullptr) return;
  char displayName[MAX_PATH] = "";
  BROWSEINFOA info{};
  info.hwndOwner = m_pParent != nullptr ? m_pParent->m_hWnd : nullptr;
  info.pszDisplayName = displayName;
  info.lpszTitle = m_strTitle.c_str();
  info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_RETURNFSANCESTORS | BIF_NEWDIALOGSTYLE;
  if (m_bNoNewFolder != FALSE) info.ulFlags |= BIF_NONEWFOLDERBUTTON;
  info.lpfn = onBrowse;
  const auto free = [&](ITEMIDLIST* item) noexcept { allocator->Free(item); };
  std::unique_ptr<ITEMIDLIST, decltype(free)> item(nullptr, free);
  const HWND outer = std::exchange(g_hBrowser, nullptr);
  run.Show([&] { item.reset(g_commonDialogs.browseForFolder(&info)); },
           [] { SendMessageA(g_hBrowser, WM_COMMAND, IDCANCEL, 0); });
  g_hBrowser = outer;
  char path[MAX_PATH] = "";
  if (item != nullptr && SHGetPathFromIDListA(item.get(), path)) m_strPath = path;
}

bool SelectFolder(char* path) {
  if (path == nullptr) return false;
  CFolderDlg dialog(TRUE, path, nullptr);
  if (dialog.DoModal() == IDCANCEL) return false;
  const std::string chosen = dialog.GetPath();
  std::memcpy(path, chosen.c_str(), chosen.size() + 1);
  return true;
}
