// SPDX-License-Identifier: MIT
// A second thread looks at the boxes as a user would, and answers them.
#include "tests/support/ModalBoxes.h"

#include <atomic>
#include <thread>

#include "framework/windows/windows_api.h"

namespace testing_support {
namespace {

BOOL CALLBACK takeVisibleDialog(HWND window, LPARAM found) {
  char name[16] = "";
  ::GetClassNameA(window, name, sizeof name);
  if (std::string(name) != "#32770" || !::IsWindowVisible(window)) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

std::string textOf(HWND window) {
  char text[1100] = "";
  ::GetWindowTextA(window, text, sizeof text);
  return text;
}

ModalBox boxOf(HWND dialog) {
  constexpr int kTextControl = 0xFFFF;
  return {textOf(dialog), textOf(::GetDlgItem(dialog, kTextControl)),
          ::GetWindow(dialog, GW_OWNER) != nullptr};
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
