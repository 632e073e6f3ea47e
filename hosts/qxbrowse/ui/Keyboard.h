// SPDX-License-Identifier: MIT
// The keys of the main window, whoever takes its messages out of the queue. During a transfer that is the
// library, which knows neither accelerators nor characters outside the code page; otherwise the main loop:
//
//   Keyboard keyboard(window, [&](MSG& key) { return TranslateAcceleratorW(window, table, &key) != 0; });
//   while (GetMessageW(&message, nullptr, 0, 0) > 0) {
//     TranslateMessage(&message);
//     DispatchMessageW(&message);
//   }
//
// Key messages for the window and what is in it are taken out on their way, given to `translate`, and, when
// that answers false, translated and dispatched as wide ones. Keys of menus and of other windows, dialogs
// among them, go where they went.
#pragma once

#include <functional>
#include <memory>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

class Keyboard {
 public:
  // Whether it has dealt with the key. It may show a dialog.
  using Translate = std::function<bool(MSG& key)>;

  // On the window's thread, one at a time there. Throws std::runtime_error where the system gives no hook.
  Keyboard(HWND window, Translate translate);
  ~Keyboard();
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;

 private:
  struct Route;
  const std::unique_ptr<Route> m_route;
};

}  // namespace browse
