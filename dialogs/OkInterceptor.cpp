// SPDX-License-Identifier: MIT
#include "dialogs/OkInterceptor.h"

#include <string>

#include "dialogs/DirFileOpen.h"
#include "dialogs/DirFileState.h"
#include "framework/ui/NarrowText.h"
#include "framework/ui/ThreadState.h"
#include "framework/windows/windows_api.h"

namespace {

std::string textOf(HWND window) {
  CWnd control;
  control.Attach(window);
  return control.GetWindowText();
}

void confirm(HWND window, CDirFileOpen& dialog) {
  const std::string shown = dialog.GetFolderPath();
  std::string folder = textOf(GetDlgItem(window, kFolderEdit));
  if (folder.empty()) folder = shown;
  if (folder.empty()) return;
  if (HasDoubledBackslash(folder)) {
    MessageBoxA(window, "Invalid Folder", nullptr, MB_ICONERROR);
    return;
  }
  // Another folder's name may be all that the code page has for the one shown.
  const bool exact = folder != shown || dialog.FolderIsExact();
  dialog.SetFolder(exact ? folder + "\\" : "");
  EndDialog(window, IDOK);
}

bool isOk(UINT message, WPARAM wParam) noexcept {
  return message == WM_COMMAND && wParam == MAKEWPARAM(IDOK, 0);
}

LRESULT CALLBACK onMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  DirFileState* const state = DirFileStateOf(window);
  if (state == nullptr) return DefWindowProcA(window, message, wParam, lParam);
  const WNDPROC previous = state->previousProcedure;
  if (state->dialog != nullptr && isOk(message, wParam)) {
    try {
      confirm(window, *state->dialog);
    } catch (...) {
      AfxKeepException();
    }
    return 0;
  }
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
    state->items = {};  // the end of a list is not seen while the filter is at work
    state->window = nullptr;
    state->dialog = nullptr;
  }
  return CallWindowProcA(previous, window, message, wParam, lParam);
}

}  // namespace

void InstallOkInterceptor(CDirFileOpen& dialog) noexcept {
  g_dirFileState.window = dialog.GetParent();
  g_dirFileState.dialog = &dialog;
  g_dirFileState.previousProcedure = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(g_dirFileState.window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&onMessage)));
}

bool HasDoubledBackslash(std::string_view folder) noexcept {
  if (folder.empty()) return false;
  return findText(folder.substr(characterSize(folder, 0)), "\\\\") != std::string_view::npos;
}
