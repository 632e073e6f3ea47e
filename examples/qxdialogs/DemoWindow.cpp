// SPDX-License-Identifier: MIT
#include "examples/qxdialogs/DemoWindow.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <stdexcept>

#include "examples/qxdialogs/Dialogs.h"

namespace {

constexpr UINT kFirstCommand = 100;
constexpr int kWidth = 640;
constexpr int kHeight = 360;

struct Demo {
  const SharedLibrary& library;
  std::string path;
  HWND answer;
};

std::string show(const Demo& demo, HWND window, const Dialog& dialog) {
  try {
    const Answer answer = dialog.show({demo.library, window, demo.path});
    return std::string(dialog.name) + (answer.confirmed ? ": 1\n" : ": 0\n") + answer.text;
  } catch (const std::exception& problem) {
    return problem.what();
  }
}

LRESULT CALLBACK handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto* const demo = reinterpret_cast<const Demo*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  const std::size_t command = LOWORD(wParam) - std::size_t{kFirstCommand};
  if (message == WM_COMMAND && demo != nullptr && command < dialogs().size()) {
    SetWindowTextA(demo->answer, show(*demo, window, dialogs()[command]).c_str());
    return 0;
  }
  if (message == WM_SIZE && demo != nullptr) {
    MoveWindow(demo->answer, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
    return 0;
  }
  if (message == WM_DESTROY) PostQuitMessage(0);
  return DefWindowProcA(window, message, wParam, lParam);
}

HMENU makeMenu() {
  const HMENU popup = CreatePopupMenu();
  UINT command = kFirstCommand;
  for (const Dialog& dialog : dialogs()) AppendMenuA(popup, MF_STRING, command++, dialog.title);
  const HMENU menu = CreateMenu();
  AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), "&Dialogs");
  return menu;
}

HWND makeWindow() {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = handle;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.lpszClassName = "qxdialogs";
  RegisterClassA(&windowClass);
  const HWND window =
      CreateWindowExA(0, windowClass.lpszClassName, "qxdialogs", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                      CW_USEDEFAULT, kWidth, kHeight, nullptr, makeMenu(), windowClass.hInstance, nullptr);
  if (window == nullptr) throw std::runtime_error("the system makes no window");
  return window;
}

}  // namespace

void runDemoWindow(const SharedLibrary& library, const std::string& path) {
  const HWND window = makeWindow();
  const Demo demo{library, path,
                  CreateWindowExA(0, "STATIC", "Choose a dialog from the menu.", WS_CHILD | WS_VISIBLE, 0, 0,
                                  kWidth, kHeight, window, nullptr, GetModuleHandleA(nullptr), nullptr)};
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&demo));
  ShowWindow(window, SW_SHOWNORMAL);
  MSG message{};
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}
