// SPDX-License-Identifier: MIT
// The exported functions of the dialogs. They only forward.
#include "QXDialogs.h"
#include "dialogs/FolderDlg.h"
#include "dialogs/HtmlHelp.h"
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
