// SPDX-License-Identifier: MIT
// The folder of the newer dialog is the one in which the user has confirmed.
#include <gtest/gtest.h>

#include <string>

#include "framework/ui/Com.h"
#include "framework/ui/CommonDialogs.h"
#include "framework/ui/FileDialog.h"
#include "tests/dialogs/FolderTest.h"
// Only now:
#include <shlobj.h>

namespace {

ComPtr<IShellItem> itemOf(const std::filesystem::path& path) {
  void* item = nullptr;
  EXPECT_EQ(SHCreateItemFromParsingName(path.c_str(), nullptr, IID_IShellItem, &item), S_OK) << path;
  return ComPtr<IShellItem>(static_cast<IShellItem*>(item));
}

// COM's interfaces have no destructors.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Stands for the system's dialog: confirms at once, and is somewhere else when that is over.
class Wanderer final : public IFileDialog {
 public:
  Wanderer(const std::filesystem::path& folder, const std::filesystem::path& file,
           const std::filesystem::path& later)
      : m_folder(itemOf(folder)), m_file(itemOf(file)), m_later(itemOf(later)) {}
  virtual ~Wanderer() = default;
  Wanderer(const Wanderer&) = delete;
  Wanderer& operator=(const Wanderer&) = delete;

  HRESULT WINAPI Show(HWND) override {
    EXPECT_EQ(m_events->OnFileOk(this), S_OK);
    m_folder.swap(m_later);
    return S_OK;
  }
  HRESULT WINAPI Advise(IFileDialogEvents* events, DWORD* cookie) override {
    m_events = events;
    *cookie = 7;
    return S_OK;
  }
  HRESULT WINAPI Unadvise(DWORD cookie) override {
    EXPECT_EQ(cookie, 7U);
    m_events = nullptr;
    return S_OK;
  }
  HRESULT WINAPI GetFolder(IShellItem** item) override { return hand(m_folder, item); }
  HRESULT WINAPI GetResult(IShellItem** item) override { return hand(m_file, item); }

  HRESULT WINAPI QueryInterface(REFIID, void** out) override {
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG WINAPI AddRef() override { return 1; }
  ULONG WINAPI Release() override { return 1; }

  HRESULT WINAPI SetFileTypes(UINT, const COMDLG_FILTERSPEC*) override { return S_OK; }
  HRESULT WINAPI SetFileTypeIndex(UINT) override { return S_OK; }
  HRESULT WINAPI GetFileTypeIndex(UINT*) override { return E_NOTIMPL; }
  HRESULT WINAPI SetOptions(DWORD) override { return S_OK; }
  HRESULT WINAPI GetOptions(DWORD*) override { return E_NOTIMPL; }
  HRESULT WINAPI SetDefaultFolder(IShellItem*) override { return S_OK; }
  HRESULT WINAPI SetFolder(IShellItem*) override { return S_OK; }
  HRESULT WINAPI GetCurrentSelection(IShellItem**) override { return E_NOTIMPL; }
  HRESULT WINAPI SetFileName(LPCWSTR) override { return S_OK; }
  HRESULT WINAPI GetFileName(LPWSTR*) override { return E_NOTIMPL; }
  HRESULT WINAPI SetTitle(LPCWSTR) override { return S_OK; }
  HRESULT WINAPI SetOkButtonLabel(LPCWSTR) override { return S_OK; }
  HRESULT WINAPI SetFileNameLabel(LPCWSTR) override { return S_OK; }
  HRESULT WINAPI AddPlace(IShellItem*, FDAP) override { return S_OK; }
  HRESULT WINAPI SetDefaultExtension(LPCWSTR) override { return S_OK; }
  HRESULT WINAPI Close(HRESULT) override { return S_OK; }
  HRESULT WINAPI SetClientGuid(REFGUID) override { return S_OK; }
  HRESULT WINAPI ClearClientData() override { return S_OK; }
  HRESULT WINAPI SetFilter(IShellItemFilter*) override { return S_OK; }

 private:
  static HRESULT hand(const ComPtr<IShellItem>& item, IShellItem** out) {
    item->AddRef();
    *out = item.get();
    return S_OK;
  }

  ComPtr<IShellItem> m_folder;
  ComPtr<IShellItem> m_file;
  ComPtr<IShellItem> m_later;
  IFileDialogEvents* m_events = nullptr;
};

#pragma GCC diagnostic pop

Wanderer* g_wanderer = nullptr;

HRESULT WINAPI giveWanderer(REFCLSID, IUnknown*, DWORD, REFIID, void** made) {
  *made = static_cast<IFileDialog*>(g_wanderer);
  return S_OK;
}

using NewerDialogFolder = dialog_test::FolderTest;

// The dialog was asked when it was over.
TEST_F(NewerDialogFolder, IsTheOneInWhichTheUserConfirmed) {
  const Apartment apartment;
  addFile("a.txt");
  addFolder("elsewhere");
  Wanderer wanderer(scratch.path(), scratch.path() / "a.txt", scratch.path() / "elsewhere");
  g_wanderer = &wanderer;
  g_commonDialogs.createInstance = &giveWanderer;
  CFileDialog dialog(true, nullptr, "", 0, "", nullptr);
  EXPECT_EQ(dialog.DoModal(), IDOK);
  g_commonDialogs = {};
  EXPECT_EQ(dialog.GetFolderPath(), folder());
  EXPECT_EQ(dialog.GetPathName(), folder() + "\\a.txt");
}

}  // namespace
