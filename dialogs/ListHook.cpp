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

// After each deletion the list measures all of its items, unless it draws nothing meanwhile, and tells the
// dialog that the focus is at another place, unless no item behind the deleted one has it.
class Deletions {
 public:
  explicit Deletions(HWND list) noexcept : m_list(list), m_focused(FocusedItem(list)) {
    SendMessageA(m_list, WM_SETREDRAW, FALSE, 0);
    if (m_focused >= 0) SetItemFocus(m_list, m_focused, false);
  }
  ~Deletions() {
    const int focused = std::min(m_focused, ItemCount(m_list) - 1);
    if (focused >= 0) SetItemFocus(m_list, focused, true);
    SendMessageA(m_list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(m_list, nullptr, TRUE);
  }
  Deletions(const Deletions&) = delete;
  Deletions& operator=(const Deletions&) = delete;

  bool Delete(int index) noexcept {
    const bool deleted = DeleteItem(m_list, index);
    if (deleted && index < m_focused) --m_focused;
    return deleted;
  }

 private:
  const HWND m_list;
  int m_focused;
};

// One pass over the list.
class Sieve {
 public:
  Sieve(HWND list, DirFileState& state) noexcept : m_list(list), m_state(state) {}

  // True when the item was unwanted and has gone.
  bool Remove(int index) {
    if (!IsWindow(m_list) || !isUnwanted(index)) return false;
    if (!m_deletions) m_deletions.emplace(m_list);
    return m_deletions->Delete(index);
  }

 private:
  [[nodiscard]] bool isUnwanted(int index) const {
    const bool directory = m_state.items.IsDirectory(m_state.items.NameOf(m_list, index));
    return directory == (m_state.filter == kListFiles);
  }

  const HWND m_list;
  DirFileState& m_state;
  std::optional<Deletions> m_deletions;
};

// After a deletion the walk of a pass goes back to the second item: where the first one goes, the one that
// has moved to the front is left for the next pass. All others are looked at, the last one first: deleting an
// item takes the list time for each one behind it.
void filterItems(HWND list, DirFileState& state) {
  const int unseen = std::min(std::exchange(state.unseen, 0), ItemCount(list));
  Sieve sieve(list, state);
  if (unseen > 1) state.items.LookAtAll();
  for (int index = unseen - 1; index > 1; --index) sieve.Remove(index);
  const bool firstHasGone = unseen > 0 && sieve.Remove(0);
  if (unseen > 1 && firstHasGone) state.unseen = 1;
  if (unseen > 1 && !firstHasGone) sieve.Remove(1);
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
