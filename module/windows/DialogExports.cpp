// SPDX-License-Identifier: MIT
// The exported functions of the dialogs. They only forward.
#include "QXDialogs.h"
#include "dialogs/FolderDlg.h"
#include "dialogs/HtmlHelp.h"
#include "dialogs/OpenDirFileDialog.h"
#include "dialogs/OpenFileDialog.h"
#include "framework/ModuleState.h"

namespace {

// Every entry installs the module's framework state, and no exception leaves: a host of another language
// could not handle one.
template <typename Work>
QXBool enter(const Work& work) noexcept {
  const AFX_MAINTAIN_STATE2 state(AfxGetAppModuleState());
  try {
    return work() ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

}  // namespace

QXBool DoOpenFileDialog(const void* pReserved1, const void* pReserved2, const void* pReserved3, char* pszPath,
                        void* /*pUnused*/, std::uint32_t nFlags, char** ppPathList, std::uint32_t* pnCount,
                        void** ppDialog, QXBool* pbCancelled) {
  return enter([&] {
    return OpenFileDialog({pReserved1, pReserved2, pReserved3}, nFlags,
                          {pszPath, ppPathList, pnCount, ppDialog, pbCancelled});
  });
}

QXBool DoOpenDirFileDialog(const char* pszTitle, const char* pszOkText, const void* pReserved, char* pszPath,
                           QXBool bFiles, QXBool bOpen, std::uint32_t nMode, std::uint32_t nFlags,
                           char** ppPathList, std::uint32_t* pnCount, void** ppDialog, QXBool* pbCancelled) {
  return enter([&] {
    return OpenDirFileDialog({pszTitle, pszOkText, pReserved, bFiles != 0, bOpen != 0, nMode, nFlags},
                             {pszPath, ppPathList, pnCount, ppDialog, pbCancelled});
  });
}

QXBool DoFreeDirFileDialog(void* pDialog) {
  return enter([&] { return FreeFileDialog(pDialog); });
}

QXBool QXSelectFolder(char* pszPath) {
  return enter([&] { return SelectFolder(pszPath); });
}

QXBool DoHtmlHelp(void* hWindow, const char* pszFile, std::uint32_t nCommand, std::uint32_t nData) {
  return enter([&] {
    if (pszFile == nullptr) return false;
    CallHtmlHelp(static_cast<HWND>(hWindow), pszFile, nCommand, nData);
    return true;
  });
}
