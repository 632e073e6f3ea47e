// SPDX-License-Identifier: MIT
// A second thread looks at the box as a user would, and answers it.
#include "framework/platform/modal_message.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "framework/windows/windows_api.h"

namespace {

struct Box {
  std::string caption;
  std::string text;
  bool owned = true;
};

BOOL CALLBACK takeVisibleDialog(HWND window, LPARAM found) {
  char name[16] = "";
  ::GetClassNameA(window, name, sizeof name);
  if (std::string(name) != "#32770" || !::IsWindowVisible(window)) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

HWND awaitDialog(DWORD thread) {
  HWND found = nullptr;
  while (found == nullptr) {
    ::SwitchToThread();
    ::EnumThreadWindows(thread, &takeVisibleDialog, reinterpret_cast<LPARAM>(&found));
  }
  return found;
}

std::string textOf(HWND window) {
  char text[256] = "";
  ::GetWindowTextA(window, text, sizeof text);
  return text;
}

Box shownBox(const char* text, const char* caption) {
  Box box;
  std::thread user([&box, thread = ::GetCurrentThreadId()] {
    const HWND dialog = awaitDialog(thread);
    constexpr int kTextControl = 0xFFFF;
    box.caption = textOf(dialog);
    box.text = textOf(::GetDlgItem(dialog, kTextControl));
    box.owned = ::GetWindow(dialog, GW_OWNER) != nullptr;
    ::PostMessageA(dialog, WM_COMMAND, IDOK, 0);
  });
  platform::showModalMessage(text, caption);
  user.join();
  return box;
}

TEST(ModalMessage, IsABoxWithoutAnOwner) {
  const Box box = shownBox("100 %s done", "Copy");
  EXPECT_EQ(box.text, "100 %s done");
  EXPECT_EQ(box.caption, "Copy");
  EXPECT_FALSE(box.owned);
}

TEST(ModalMessage, IsEmptyForNullTexts) {
  const Box box = shownBox(nullptr, nullptr);
  EXPECT_EQ(box.text, "");
  EXPECT_EQ(box.caption, "");
}

}  // namespace
