// SPDX-License-Identifier: MIT
// The context menu that this thread shows, told and used by a second thread.
#pragma once

#include "hosts/qxbrowse/ui/System.h"
#include "tests/dialogs/Driver.h"
#include "tests/hosts/qxbrowse/VisibleWindow.h"

namespace browse {

// What the menu key, or Shift+F10, comes to.
inline void pressMenuKey(HWND focused) {
  SendMessageW(focused, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(focused), MAKELPARAM(-1, -1));
}

class ShownMenu {
 public:
  // `work` shows a menu; `user` gets it. Returns when both are over, with what the menu has sent done.
  static void open(const std::function<void()>& work, const std::function<void(const ShownMenu&)>& user) {
    const DWORD thread = GetCurrentThreadId();
    dialog_test::drive(
        [&work] {
          work();
          MSG message{};
          while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        },
        [thread, &user](dialog_test::Driver& driver) {
          HWND window = nullptr;
          driver.waitUntil("a menu", [&] { return (window = visibleWindow(thread, kMenu)) != nullptr; });
          user(ShownMenu(window));
          driver.waitUntilGone(window);
        });
  }

  [[nodiscard]] bool isEnabled(auto id) const {
    const UINT state = GetMenuState(m_menu, static_cast<UINT>(id), MF_BYCOMMAND);
    return state != ~0U && (state & MF_GRAYED) == 0;
  }
  // The letter of an entry.
  void press(wchar_t letter) const { PostMessageW(m_window, WM_CHAR, letter, 0); }

 private:
  explicit ShownMenu(HWND window) : m_window(window), m_menu(menuOf(window)) {}

  static HMENU menuOf(HWND window) {
    return reinterpret_cast<HMENU>(SendMessageW(window, MN_GETHMENU, 0, 0));
  }

  HWND m_window;
  HMENU m_menu;
};

}  // namespace browse
