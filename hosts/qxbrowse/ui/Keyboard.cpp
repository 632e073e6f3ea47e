// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Keyboard.h"

#include <deque>
#include <stdexcept>
#include <utility>

namespace browse {
namespace {

constexpr UINT kKeyWaits = WM_APP;
constexpr wchar_t kKeyboardClass[] = L"qxbrowse.keyboard";

bool isMenuOpen() {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetCurrentThreadId(), &info);
  return (info.flags & (GUI_INMENUMODE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE)) != 0;
}

}  // namespace

// Keys go through a window of their own: what the hook itself did would be done in the middle of somebody's
// taking of a message.
struct Keyboard::Route {
  static Route*& here() {
    static thread_local Route* route = nullptr;
    return route;
  }

  // Turns a key on its way into a message for the window behind this.
  static LRESULT CALLBACK hook(int code, WPARAM removed, LPARAM address) {
    auto& message = *reinterpret_cast<MSG*>(address);
    Route* const route = here();
    if (code == HC_ACTION && removed == PM_REMOVE && route != nullptr && route->isOurs(message)) {
      route->keys.push_back(message);
      message.hwnd = route->window;
      message.message = kKeyWaits;
    }
    return CallNextHookEx(nullptr, code, removed, address);
  }

  static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Route* const route = here();
    if (message != kKeyWaits || route == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    if (!route->keys.empty()) route->dispatchFirst();
    return 0;
  }

  [[nodiscard]] bool isOurs(const MSG& message) const {
    const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    return isKey && (message.hwnd == frame || IsChild(frame, message.hwnd)) && !isMenuOpen();
  }

  void dispatchFirst() {
    MSG key = keys.front();
    keys.pop_front();
    if (translate(key)) return;
    TranslateMessage(&key);
    DispatchMessageW(&key);
  }

  HWND frame = nullptr;
  Translate translate;
  HWND window = nullptr;
  HHOOK installed = nullptr;
  std::deque<MSG> keys;
};

Keyboard::Keyboard(HWND window, Translate translate) : m_route(std::make_unique<Route>()) {
  WNDCLASSW routeClass{};
  routeClass.lpfnWndProc = &Route::receive;
  routeClass.hInstance = GetModuleHandleW(nullptr);
  routeClass.lpszClassName = kKeyboardClass;
  RegisterClassW(&routeClass);
  m_route->frame = window;
  m_route->translate = std::move(translate);
  m_route->window = CreateWindowW(kKeyboardClass, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  routeClass.hInstance, nullptr);
  m_route->installed = SetWindowsHookExW(WH_GETMESSAGE, &Route::hook, nullptr, GetCurrentThreadId());
  if (m_route->window == nullptr || m_route->installed == nullptr) {
    throw std::runtime_error("the system gives no hook for keys");
  }
  Route::here() = m_route.get();
}

Keyboard::~Keyboard() {
  Route::here() = nullptr;
  UnhookWindowsHookEx(m_route->installed);
  DestroyWindow(m_route->window);
}

}  // namespace browse
