// SPDX-License-Identifier: MIT
#include "framework/platform/message_queue.h"

#include "framework/windows/windows_api.h"

namespace platform {
namespace {

HWND nativeWindow(WindowHandle window) noexcept { return static_cast<HWND>(window); }

void dispatch(const MSG& message) {
  ::TranslateMessage(&message);
  ::DispatchMessageA(&message);
}

}  // namespace

bool isWindow(WindowHandle window) noexcept { return ::IsWindow(nativeWindow(window)) != FALSE; }

bool messageWaiting() noexcept {
  MSG message;
  return ::PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE) != FALSE;
}

void takeAndDispatchMessage() {
  MSG message;
  // Its answer is 0 for a quit message alone, which is dispatched like any other.
  ::GetMessageA(&message, nullptr, 0, 0);
  dispatch(message);
}

bool dispatchOneMessage(WindowHandle window, std::uint32_t firstMessage, std::uint32_t lastMessage) {
  MSG message;
  if (!::PeekMessageA(&message, nativeWindow(window), firstMessage, lastMessage, PM_REMOVE)) return false;
  dispatch(message);
  return true;
}

}  // namespace platform
