// SPDX-License-Identifier: MIT
#include "dialogs/ShellItems.h"

namespace {

constexpr UINT kGetShellBrowser = WM_USER + 7;  // what the shell's own windows ask the dialog

ComPtr<IShellView> viewOf(HWND dialog) noexcept {
  auto* const browser = reinterpret_cast<IShellBrowser*>(SendMessageA(dialog, kGetShellBrowser, 0, 0));
  IShellView* view = nullptr;
  if (browser == nullptr || FAILED(browser->QueryActiveShellView(&view))) return nullptr;
  return ComPtr<IShellView>(view);
}

std::wstring nameIn(IShellFolder& folder, const ITEMIDLIST* item, SHGDNF kind) {
  STRRET name{};
  if (FAILED(folder.GetDisplayNameOf(item, SHGDN_INFOLDER | kind, &name)) || name.uType != STRRET_WSTR)
    return {};
  return ShellText(name.pOleStr).get();
}

bool isPath(const std::wstring& name) noexcept { return name.find_first_of(L"\\/:") != std::wstring::npos; }

}  // namespace

ShellItems::ShellItems(HWND dialog) noexcept {
  const ComPtr<IShellView> shown = viewOf(dialog);
  void* view = nullptr;
  if (shown == nullptr || FAILED(shown->QueryInterface(IID_IFolderView, &view))) return;
  m_view.reset(static_cast<IFolderView*>(view));
  void* folder = nullptr;
  if (SUCCEEDED(m_view->GetFolder(IID_IShellFolder, &folder)))
    m_folder.reset(static_cast<IShellFolder*>(folder));
}

std::wstring ShellItems::NameOf(int place, const std::optional<std::wstring>& text) const {
  ITEMIDLIST* found = nullptr;
  if (m_folder == nullptr || FAILED(m_view->Item(place, &found))) return {};
  const std::unique_ptr<ITEMIDLIST, FreeTaskMemory> item(found);
  std::wstring name = nameIn(*m_folder, item.get(), SHGDN_FORPARSING);
  if (isPath(name)) return {};
  const bool known = !text || name == *text || nameIn(*m_folder, item.get(), SHGDN_NORMAL) == *text;
  return known ? name : L"";
}
