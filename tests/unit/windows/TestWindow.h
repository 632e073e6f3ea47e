// SPDX-License-Identifier: MIT
// A message-only window whose messages WM_APP + number go to a handler.
#pragma once

#include "framework/windows/windows_api.h"

#include <functional>

class TestWindow {
 public:
  explicit TestWindow(std::function<void(unsigned)> handler);
  ~TestWindow();
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  void post(unsigned number);
  void destroy();
  [[nodiscard]] HWND handle() const { return m_window; }

 private:
  static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM first, LPARAM second);
  std::function<void(unsigned)> m_handler;
  HWND m_window = nullptr;
};
