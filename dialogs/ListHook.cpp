// SPDX-License-Identifier: MIT
#include "dialogs/ListHook.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "dialogs/DirFileState.h"
#include "dialogs/ListItems.h"
#include "framework/ui/ThreadState.h"
#include "framework/windows/windows_api.h"
// Only now:
#include <commctrl.h>

namespace {

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

bool isUnwanted(HWND list, int index, DirFileState& state) {
  const bool directory = state.items.IsDirectory(state.items.NameOf(list, index));
  return directory == (state.filter == kListFiles);
}

// After a deletion the walk goes back to the second item, and item 0 is not looked at again. All items
// between that one and the deleted one have been kept by this pass, so it goes on where it is: a folder of
// thousands would take minutes otherwise. What is left for the next pass is the item that has moved to the
// front.
void filterItems(HWND list, DirFileState& state) {
  const int unseen = std::exchange(state.unseen, 0);
  std::optional<DrawingPause> pause;
  for (int index = 0; index < std::min(unseen, ItemCount(list));) {
    const bool unwanted = isUnwanted(list, index, state);
    if (unwanted && !pause) pause.emplace(list);
    const bool deleted = unwanted && DeleteItem(list, index);
    if (deleted && index == 0 && unseen > 1) state.unseen = 1;
    index = deleted ? std::max(index, 1) : index + 1;
  }
}

// Each of a pass's thousands of messages would go through the hook. And deleting a selected item asks for the
// number of the selected ones before the item has gone: a second pass would delete it, and the first one then
// the item behind it.
class HookPause {
 public:
  HookPause() noexcept { RemoveListHook(); }
  ~HookPause() { InstallListHook(); }
  HookPause(const HookPause&) = delete;
  HookPause& operator=(const HookPause&) = delete;
};

void filter(HWND list, DirFileState& state) {
  const bool filters = state.filter == kListFiles || state.filter == kListFolders;
  if (!filters || state.unseen == 0) return;
  const HookPause pause;
  filterItems(list, state);
}

// Whoever asks a list for the number of its selected items has it filtered: this looks for the first one.
void takeSelectedNames(HWND list, DirFileState& state) {
  int index = NextSelectedItem(list, -1);
  if (index == -1) return;
  state.selectedNames.clear();
  for (; index != -1; index = NextSelectedItem(list, index))
    state.selectedNames.push_back(state.items.NameOf(list, index));
}

void onListGone(HWND list, DirFileState& state) {
  takeSelectedNames(list, state);
  state.items = {};
}

// What may bring items that the filter has not seen, or bring others to the front.
bool changesItems(UINT message) noexcept {
  constexpr UINT kChanges[] = {LVM_INSERTITEMA,  LVM_INSERTITEMW,  LVM_SETITEMA,     LVM_SETITEMW,
                               LVM_SETITEMTEXTA, LVM_SETITEMTEXTW, LVM_SETITEMCOUNT, LVM_SORTITEMS,
                               LVM_SORTITEMSEX,  LVM_UPDATE};
  return std::find(std::begin(kChanges), std::end(kChanges), message) != std::end(kChanges);
}

bool isWatched(UINT message) noexcept {
  return message == WM_DESTROY || message == LVM_GETSELECTEDCOUNT || changesItems(message);
}

// Null for other windows. Lists of the host on this thread, while the dialog is up or after it, are none of
// this hook's business.
DirFileState* stateOfList(HWND window) noexcept {
  char name[32] = "";
  GetClassNameA(window, name, sizeof name);
  if (lstrcmpiA(name, WC_LISTVIEWA) != 0) return nullptr;
  return FindDirFileState([window](const DirFileState& state) { return IsChild(state.window, window) != 0; });
}

void onListMessage(HWND list, UINT message, DirFileState& state) {
  if (message == LVM_GETSELECTEDCOUNT) {
    filter(list, state);
  } else if (message == WM_DESTROY) {
    onListGone(list, state);
  } else {
    state.unseen = DirFileState::kAll;
  }
}

LRESULT CALLBACK onCall(int code, WPARAM wParam, LPARAM lParam) {
  const auto& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
  try {
    DirFileState* const state =
        code == HC_ACTION && isWatched(call.message) ? stateOfList(call.hwnd) : nullptr;
    if (state != nullptr) onListMessage(call.hwnd, call.message, *state);
  } catch (...) {
    AfxKeepException();
  }
  return CallNextHookEx(g_listHook, code, wParam, lParam);
}

}  // namespace

void InstallListHook() noexcept {
  RemoveListHook();
  g_listHook = SetWindowsHookExA(WH_CALLWNDPROC, &onCall, nullptr, GetCurrentThreadId());
}

void RemoveListHook() noexcept {
  if (g_listHook != nullptr) UnhookWindowsHookEx(std::exchange(g_listHook, nullptr));
}
