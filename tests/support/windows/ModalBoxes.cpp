// SPDX-License-Identifier: MIT
// A second thread looks at the boxes as a user would, and answers them.
#include "tests/support/ModalBoxes.h"

#include <atomic>
#include <thread>

#include "framework/windows/windows_api.h"

namespace testing_support {
namespace {

std::string classOf(HWND window) {
  char name[16] = "";
  ::GetClassNameA(window, name, sizeof name);
  return name;
}

BOOL CALLBACK takeVisibleDialog(HWND window, LPARAM found) {
  if (classOf(window) != "#32770" || !::IsWindowVisible(window)) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

BOOL CALLBACK countVisibleButton(HWND window, LPARAM count) {
  if (classOf(window) == "Button" && ::IsWindowVisible(window)) ++*reinterpret_cast<int*>(count);
  return TRUE;
}

std::string textOf(HWND window) {
  char text[1100] = "";
  ::GetWindowTextA(window, text, sizeof text);
  return text;
}

ModalBox boxOf(HWND dialog) {
  constexpr int kTextControl = 0xFFFF;
  int buttons = 0;
  ::EnumChildWindows(dialog, &countVisibleButton, reinterpret_cast<LPARAM>(&buttons));
  return {.caption = textOf(dialog),
          .text = textOf(::GetDlgItem(dialog, kTextControl)),
          .owned = ::GetWindow(dialog, GW_OWNER) != nullptr,
          .buttons = buttons};
}

}  // namespace

std::vector<ModalBox> modalBoxesOf(const std::function<void()>& work) {
  std::vector<ModalBox> boxes;
  std::atomic<bool> over{false};
  std::thread user([&, thread = ::GetCurrentThreadId()] {
    while (!over) {
      HWND dialog = nullptr;
      ::EnumThreadWindows(thread, &takeVisibleDialog, reinterpret_cast<LPARAM>(&dialog));
      if (dialog == nullptr) {
        ::SwitchToThread();
        continue;
      }
      boxes.push_back(boxOf(dialog));
      ::PostMessageA(dialog, WM_COMMAND, IDOK, 0);
      while (::IsWindow(dialog)) ::SwitchToThread();
    }
  });
  work();
  over = true;
  user.join();
  return boxes;
}

}  // namespace testing_support
