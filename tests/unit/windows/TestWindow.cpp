// SPDX-License-Identifier: MIT
#include "tests/unit/windows/TestWindow.h"

#include <gtest/gtest.h>

namespace {

constexpr char kClassName[] = "qx_test_window";

}  // namespace

LRESULT CALLBACK TestWindow::receive(HWND window, UINT message, WPARAM first, LPARAM second) {
  auto* self = reinterpret_cast<TestWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (self == nullptr || message < WM_APP) return DefWindowProcA(window, message, first, second);
  self->m_handler(message - WM_APP);
  return 0;
}

TestWindow::TestWindow(std::function<void(unsigned)> handler) : m_handler(std::move(handler)) {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = &TestWindow::receive;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = kClassName;
  RegisterClassA(&windowClass);
  m_window = CreateWindowExA(0, kClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance,
                             nullptr);
  EXPECT_NE(m_window, nullptr) << "error " << GetLastError();
  SetWindowLongPtrA(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

TestWindow::~TestWindow() { destroy(); }

void TestWindow::post(unsigned number) { EXPECT_TRUE(PostMessageA(m_window, WM_APP + number, 0, 0)); }

void TestWindow::destroy() {
  if (m_window != nullptr) DestroyWindow(m_window);
  m_window = nullptr;
}
