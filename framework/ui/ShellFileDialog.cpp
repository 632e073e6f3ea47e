// SPDX-License-Identifier: MIT
#include "framework/ui/ShellFileDialog.h"

#include <cstring>
#include <stdexcept>
#include <utility>

#include "framework/ui/Com.h"
#include "framework/ui/CommonDialogs.h"
#include "framework/ui/ThreadState.h"
#include "framework/ui/WideText.h"
#include "framework/windows/windows_api.h"
// Only now:
#include <shobjidl.h>

namespace {

// These options have one value in both dialogs.
constexpr DWORD kSharedOptions =
    OFN_OVERWRITEPROMPT | OFN_NOCHANGEDIR | OFN_NOVALIDATE | OFN_ALLOWMULTISELECT | OFN_PATHMUSTEXIST |
    OFN_FILEMUSTEXIST | OFN_CREATEPROMPT | OFN_SHAREAWARE | OFN_NOREADONLYRETURN | OFN_NOTESTFILECREATE |
    OFN_NODEREFERENCELINKS | OFN_DONTADDTORECENT | OFN_FORCESHOWHIDDEN;
static_assert(kSharedOptions ==
              (FOS_OVERWRITEPROMPT | FOS_NOCHANGEDIR | FOS_NOVALIDATE | FOS_ALLOWMULTISELECT |
               FOS_PATHMUSTEXIST | FOS_FILEMUSTEXIST | FOS_CREATEPROMPT | FOS_SHAREAWARE |
               FOS_NOREADONLYRETURN | FOS_NOTESTFILECREATE | FOS_NODEREFERENCELINKS | FOS_DONTADDTORECENT |
               FOS_FORCESHOWHIDDEN));

void require(HRESULT result, const char* what) {
  if (FAILED(result)) throw std::runtime_error(what);
}

ComPtr<IFileDialog> makeDialog(bool open) {
  void* dialog = nullptr;
  require(g_commonDialogs.createInstance(open ? CLSID_FileOpenDialog : CLSID_FileSaveDialog, nullptr,
                                         CLSCTX_INPROC_SERVER, IID_IFileDialog, &dialog),
          "the shell makes no file dialog");
  return ComPtr<IFileDialog>(static_cast<IFileDialog*>(dialog));
}

std::string textOf(const char* text) { return text != nullptr ? text : ""; }

// A folder that does not exist is left to the dialog's own choice.
void setFolder(IFileDialog& dialog, const std::wstring& folder) {
  void* item = nullptr;
  if (folder.empty() || FAILED(SHCreateItemFromParsingName(folder.c_str(), nullptr, IID_IShellItem, &item)))
    return;
  const ComPtr<IShellItem> owner(static_cast<IShellItem*>(item));
  dialog.SetFolder(owner.get());
}

void setFolderAndName(IFileDialog& dialog, const OPENFILENAMEA& record) {
  setFolder(dialog, wideText(textOf(record.lpstrInitialDir)));
  const PathParts name = pathParts(wideText(textOf(record.lpstrFile)));
  setFolder(dialog, name.folder);
  if (!name.file.empty()) dialog.SetFileName(name.file.c_str());
}

// The record's filter: pairs of texts, each with its end, and an empty one behind the last pair.
void setFilter(IFileDialog& dialog, const OPENFILENAMEA& record) {
  std::vector<std::wstring> texts;
  for (const char* next = record.lpstrFilter; next != nullptr && *next != '\0'; next += std::strlen(next) + 1)
    texts.push_back(wideText(next));
  std::vector<COMDLG_FILTERSPEC> types;
  for (std::size_t i = 0; i + 1 < texts.size(); i += 2)
    types.push_back({texts[i].c_str(), texts[i + 1].c_str()});
  if (types.empty()) return;
  dialog.SetFileTypes(static_cast<UINT>(types.size()), types.data());
  if (record.nFilterIndex != 0) dialog.SetFileTypeIndex(record.nFilterIndex);
}

void prepare(IFileDialog& dialog, const OPENFILENAMEA& record) {
  require(dialog.SetOptions((record.Flags & kSharedOptions) | FOS_FORCEFILESYSTEM),
          "the file dialog refuses its options");
  setFilter(dialog, record);
  setFolderAndName(dialog, record);
  if (!textOf(record.lpstrDefExt).empty()) dialog.SetDefaultExtension(wideText(record.lpstrDefExt).c_str());
  if (record.lpstrTitle != nullptr) dialog.SetTitle(wideText(record.lpstrTitle).c_str());
}

// "" when the item is none of the file system.
std::wstring pathOf(IShellItem& item) {
  wchar_t* name = nullptr;
  if (FAILED(item.GetDisplayName(SIGDN_FILESYSPATH, &name))) return {};
  return ShellText(name).get();
}

std::string told(const std::wstring& path, ChosenFiles& chosen) {
  const auto text = exactNarrowText(path);
  if (!text) chosen.exact = false;
  return text.value_or("");
}

template <typename Interface, typename Get>
ComPtr<Interface> got(Get&& get) {
  Interface* object = nullptr;
  return SUCCEEDED(get(&object)) ? ComPtr<Interface>(object) : nullptr;
}

// COM's interfaces have no destructors.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// The folder is the one that is shown when the user confirms: afterwards the dialog may be anywhere.
class FolderAtOk final : public IFileDialogEvents {
 public:
  explicit FolderAtOk(IFileDialog& dialog) : m_dialog(dialog) {
    require(dialog.Advise(this, &m_cookie), "the file dialog tells nothing");
  }
  virtual ~FolderAtOk() { m_dialog.Unadvise(m_cookie); }
  FolderAtOk(const FolderAtOk&) = delete;
  FolderAtOk& operator=(const FolderAtOk&) = delete;

  [[nodiscard]] const std::wstring& path() const noexcept { return m_path; }

  HRESULT WINAPI OnFileOk(IFileDialog* dialog) override {
    try {
      const auto folder = got<IShellItem>([&](IShellItem** out) { return dialog->GetFolder(out); });
      m_path = folder != nullptr ? pathOf(*folder) : L"";
    } catch (...) {
      AfxKeepException();
    }
    return S_OK;
  }
  HRESULT WINAPI OnFolderChanging(IFileDialog*, IShellItem*) override { return S_OK; }
  HRESULT WINAPI OnFolderChange(IFileDialog*) override { return S_OK; }
  HRESULT WINAPI OnSelectionChange(IFileDialog*) override { return S_OK; }
  HRESULT WINAPI OnTypeChange(IFileDialog*) override { return S_OK; }
  HRESULT WINAPI OnShareViolation(IFileDialog*, IShellItem*, FDE_SHAREVIOLATION_RESPONSE*) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI OnOverwrite(IFileDialog*, IShellItem*, FDE_OVERWRITE_RESPONSE*) override {
    return E_NOTIMPL;
  }

  HRESULT WINAPI QueryInterface(REFIID id, void** out) override {
    const bool known = id == IID_IUnknown || id == IID_IFileDialogEvents;
    *out = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  // It lives on the stack, longer than the dialog knows it.
  ULONG WINAPI AddRef() override { return 1; }
  ULONG WINAPI Release() override { return 1; }

 private:
  IFileDialog& m_dialog;
  DWORD m_cookie = 0;
  std::wstring m_path;
};

#pragma GCC diagnostic pop

std::vector<std::wstring> pathsOf(IShellItemArray& items) {
  DWORD count = 0;
  require(items.GetCount(&count), "the file dialog does not count what was chosen");
  std::vector<std::wstring> paths;
  for (DWORD i = 0; i < count; ++i) {
    const auto item = got<IShellItem>([&](IShellItem** out) { return items.GetItemAt(i, out); });
    if (item != nullptr) paths.push_back(pathOf(*item));
  }
  return paths;
}

// An open dialog has a list of results, of which there may be one; a save dialog has the one.
std::vector<std::wstring> chosenPaths(IFileDialog& dialog) {
  void* several = nullptr;
  if (SUCCEEDED(dialog.QueryInterface(IID_IFileOpenDialog, &several))) {
    const ComPtr<IFileOpenDialog> openDialog(static_cast<IFileOpenDialog*>(several));
    const auto items =
        got<IShellItemArray>([&](IShellItemArray** out) { return openDialog->GetResults(out); });
    if (items != nullptr) return pathsOf(*items);
  }
  const auto item = got<IShellItem>([&](IShellItem** out) { return dialog.GetResult(out); });
  return item != nullptr ? std::vector{pathOf(*item)} : std::vector<std::wstring>{};
}

}  // namespace

bool showShellFileDialog(const OPENFILENAMEA& record, bool open, ModalRun& run, ChosenFiles& chosen) {
  const Apartment apartment;
  if (!apartment.Entered()) throw std::runtime_error("the thread is in a multithreaded apartment");
  const auto dialog = makeDialog(open);
  prepare(*dialog, record);
  const FolderAtOk folder(*dialog);
  constexpr HRESULT kCancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);
  HRESULT shown = kCancelled;
  run.Show([&] { shown = dialog->Show(record.hwndOwner); }, [&] { dialog->Close(kCancelled); });
  if (shown == kCancelled) return false;
  require(shown, "the file dialog cannot be shown");

  const std::vector<std::wstring> paths = chosenPaths(*dialog);
  if (paths.empty()) return false;  // a dialog that went with its owner says that all is well
  for (const std::wstring& path : paths) chosen.paths.push_back(told(path, chosen));
  chosen.folder = told(folder.path(), chosen);
  return true;
}
