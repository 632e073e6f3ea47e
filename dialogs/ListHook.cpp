// SPDX-License-Identifier: MIT
#include "dialogs/ListHook.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/DirFileState.h"
#include "dialogs/ListItems.h"
#include "framework/ui/ThreadState.h"
#include "framework/windows/windows_api.h"
// Only now:
#include <commctrl.h>

namespace {

// The name counts from the current directory, which follows the folder shown. One that is not found reports
// all attributes and so is a directory.
bool isUnwanted(const char* name, std::uint32_t filter) noexcept {
  const bool directory = (GetFileAttributesA(name) & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return directory == (filter == kListFiles);
}

// The list measures all of its items after each deletion unless it draws nothing meanwhile.
class DrawingPause {
 public:
  explicit DrawingPause(HWND list) noexcept : m_list(list) { SendMessageA(m_list, WM_SETREDRAW, FALSE, 0); }
  ~DrawingPause() {
    SendMessageA(m_list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(m_list, nullptr, TRUE);
  }
  DrawingPause(const DrawingPause&) = delete;
  DrawingPause& operator=(const DrawingPause&) = delete;

 private:
  const HWND m_list;
};

// After a deletion the walk goes back to the second item, and item 0 is not looked at again. All items
// between that one and the deleted one have been kept by this pass, so it goes on where it is: a folder of
// thousands would take minutes otherwise.
void filterItems(HWND list, std::uint32_t filter) noexcept {
  char name[kItemTextSize];
  std::optional<DrawingPause> pause;
  for (int index = 0; index < ItemCount(list);) {
    ReadItemText(list, index, name);
    const bool unwanted = isUnwanted(name, filter);
    if (unwanted && !pause) pause.emplace(list);
    index = unwanted && DeleteItem(list, index) ? std::max(index, 1) : index + 1;
  }
}

// Deleting a selected item asks for the number of the selected ones before the item has gone. A second pass
// would delete it, and the first one then the item behind it.
void filterOnce(HWND list, DirFileState& state) noexcept {
  if (state.filtering || (state.filter != kListFiles && state.filter != kListFolders)) return;
  state.filtering = true;
  filterItems(list, state.filter);
  state.filtering = false;
}

// Whoever asks a list for the number of its selected items has it filtered: this looks for the first one.
void takeSelectedNames(HWND list, std::vector<std::string>& names) {
  int index = NextSelectedItem(list, -1);
  if (index == -1) return;
  names.clear();
  for (; index != -1; index = NextSelectedItem(list, index)) {
    char name[kItemTextSize];
    ReadItemText(list, index, name);
    names.emplace_back(name);
  }
}

// Null for other windows. Lists of the host on this thread, while the dialog is up or after it, are none of
// this hook's business.
DirFileState* stateOfList(HWND window) noexcept {
  char name[32] = "";
  GetClassNameA(window, name, sizeof name);
  if (lstrcmpiA(name, WC_LISTVIEWA) != 0) return nullptr;
  return FindDirFileState([window](const DirFileState& state) { return IsChild(state.window, window) != 0; });
}

LRESULT CALLBACK onCall(int code, WPARAM wParam, LPARAM lParam) {
  const auto& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
  const bool watched = call.message == WM_DESTROY || call.message == LVM_GETSELECTEDCOUNT;
  DirFileState* const state = code == HC_ACTION && watched ? stateOfList(call.hwnd) : nullptr;
  if (state != nullptr && call.message == LVM_GETSELECTEDCOUNT) filterOnce(call.hwnd, *state);
  if (state != nullptr && call.message == WM_DESTROY) {
    try {
      takeSelectedNames(call.hwnd, state->selectedNames);
    } catch (...) {
      AfxKeepException();
    }
  }
  return CallNextHookEx(g_dirFileState.callHook, code, wParam, lParam);
}

}  // namespace

void InstallListHook() noexcept {
  RemoveListHook();
  if (g_dirFileState.below != nullptr) return;  // that one's hook sees this list as well
  g_dirFileState.callHook = SetWindowsHookExA(WH_CALLWNDPROC, &onCall, nullptr, GetCurrentThreadId());
}

void RemoveListHook() noexcept {
  if (g_dirFileState.callHook != nullptr)
    UnhookWindowsHookEx(std::exchange(g_dirFileState.callHook, nullptr));
}
